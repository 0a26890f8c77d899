"""What the dashboard costs: its opening, its pages, its idle sky, and the memory that it takes and gives back."""

import json
import subprocess

from bench_table import row

AIMS = {
    "dashboard, first opening to first frame": "150",
    "dashboard, opening to first frame": "150",
    "dashboard, first showing of a page": "50",
    "dashboard, change of page": "50",
    "dashboard, processor open and idle": "10",
    "dashboard, processor minimised": "0",
    "dashboard, memory open (PSS)": "60",
    "dashboard, memory kept after closing (PSS)": "10",
}


def dashboard(executable, idle_seconds):
    done = subprocess.run([executable, str(idle_seconds)], capture_output=True, text=True, check=True,
                          stdin=subprocess.DEVNULL, timeout=300)
    results = json.loads(done.stdout.splitlines()[-1])
    return [row(each["name"], each["unit"], each["values"], AIMS.get(each["name"], "")) for each in results]
