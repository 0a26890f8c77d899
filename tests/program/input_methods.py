"""Input methods that compose, and how a person writes with one."""

import os
import subprocess
from pathlib import Path

from programs import Program
from waiting import wait_for

PROFILE = """[Groups/0]
Name=Default
Default Layout=us
DefaultIM=pinyin

[Groups/0/Items/0]
Name=keyboard-us
Layout=

[Groups/0/Items/1]
Name=pinyin
Layout=

[GroupOrder]
0=Default
"""
# For programs that start after it.
ENVIRONMENT = {"GTK_IM_MODULE": "fcitx", "QT_IM_MODULE": "fcitx", "XMODIFIERS": "@im=fcitx"}

# Strokes and what comes of them: committed by the space bar, by number, after a correction, and as the letters they are.
# All take the first candidate, which stays the first however often it is taken.
WORDS = [
    ("nihao ", "你好"), ("zhongguo1", "中国"), ("women ", "我们"), ("shijie ", "世界"), ("weishenme ", "为什么"),
    ("mingtiam<n ", "明天"), ("pengyou1", "朋友"), ("xxu<<uexiao ", "学校"), ("dianhus<a1", "电话"), ("gongzuo ", "工作"),
    ("linux\n", "linux"), ("jintian ,", "今天，"), ("xiexie .", "谢谢。"), ("42", "42"),
]
HALF_WORDS = ["wo", "zhongg", "nih", "shenm"]


class Pinyin(Program):
    """Fcitx 5 with pinyin switched on in every field, for programs that start after it with its environment."""

    def __init__(self, log):
        folder = Path(os.environ["XDG_CONFIG_HOME"]) / "fcitx5"
        folder.mkdir(parents=True, exist_ok=True)
        (folder / "profile").write_text(PROFILE, encoding="ascii")
        (folder / "config").write_text("[Behavior]\nActiveByDefault=True\n", encoding="ascii")
        super().__init__(["fcitx5", "--disable=wayland,waylandim,cloudpinyin,kimpanel"], log)

    @staticmethod
    def is_on():
        """In the field that has the focus."""
        def said(*question):
            return subprocess.run(["fcitx5-remote", *question], stdin=subprocess.DEVNULL, capture_output=True, text=True,
                                  timeout=10).stdout.strip()
        return said() == "2" and said("-n") == "pinyin"

    def wait_until_on(self):
        wait_for("pinyin in the field", self.is_on, 20)
