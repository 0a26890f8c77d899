"""demo_learn.py BUILD OUTPUT: shows what Tavrelon learns of its user, and that the next request carries it."""

import http.server
import json
import shutil
import subprocess
import tempfile
import threading
import time
import urllib.request
from pathlib import Path

import documents
import screen
from programs import Editor, StandIn, Tavrelon
from waiting import Fault, run, wait_for

REST = 2.3  # seconds that an answer keeps the stage
LEARNT = "Short, lower-case lines without full stops. Friendly, a little dry, thanks at the end."
REQUESTS = [f"{what} {when}" for what in
            ("ask mia if she can meet", "tell sam the tests are green", "say sorry for the delay to ben",
             "thank eva for the tea", "remind leo of the keys", "invite kim for lunch", "tell mum i will call",
             "ask the team for a room", "confirm the train to bern", "wish noah a good trip")
            for when in ("today", "on friday", "next week", "again please")]
BLOG = [f"Day {day}: up before the sun, coffee black, boots on. The ridge was ours alone; wind from the west, "
        "larks overhead. I count steps when it gets steep, and I never get past ninety." for day in range(1, 9)]
PROFILES = {
    "walker.pdf": ("I am a walker who keeps a diary. Plain words, present detail, no advice.", "Terse and warm."),
    "walker.rtf": ("I am a walker; I write down the weather first. Short sentences.", "Dry, precise."),
    "page": ("I write a mountain blog. First the light, then the path, then one small joke.", "Quiet humour."),
}


class Web:
    """A page, and a scrape service that fetches pages, on the loopback interface."""

    def __init__(self, page):
        web = self

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                self.give(page, "text/html; charset=utf-8")

            def do_POST(self):
                asked = json.loads(self.rfile.read(int(self.headers["Content-Length"])))
                web.scraped = asked["url"]
                with urllib.request.urlopen(asked["url"], timeout=10) as answer:
                    fetched = answer.read().decode()
                self.give(json.dumps({"success": True, "data": {"html": fetched}}).encode(), "application/json")

            def give(self, body, kind):
                self.send_response(200)
                self.send_header("Content-Type", kind)
                self.send_header("Content-Length", str(len(body)))
                self.end_headers()
                self.wfile.write(body)

            def log_message(self, *_):
                pass

        self.scraped = None
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.address = f"http://127.0.0.1:{self.server.server_port}"
        threading.Thread(target=self.server.serve_forever, daemon=True).start()


def heard(service, role="system"):
    """The messages of one role in all requests since the last reset, in their order."""
    return [next((message["content"] for message in request["body"]["messages"] if message["role"] == role), "")
            for request in service.control("requests") if isinstance(request["body"], dict)]


def newest_entry(tavrelon):
    try:
        return json.loads(tavrelon.history.read_text(encoding="utf-8"))[0]["id"]
    except (OSError, ValueError, IndexError):
        return None


def ask(tavrelon, service, text):
    """One typed request, up to its answer in the field."""
    mark, before, newest = len(tavrelon.written()), len(heard(service)), newest_entry(tavrelon)
    screen.press(screen.HOTKEY)
    tavrelon.wait_for_line(r"\[Hotkey\] Starting text listening", mark)
    screen.type_text(text)
    screen.press(screen.HOTKEY)
    wait_for("the request at the service", lambda: len(heard(service)) > before, seconds=20)
    wait_for("the answer in the history", lambda: newest_entry(tavrelon) != newest, seconds=20)
    time.sleep(REST)


def block(title, text):
    print(f"\n--- {title}", *("    " + line for line in text.split("\n")), sep="\n", flush=True)


def settings_of(home):
    return json.loads((home / "config/Tavrelon/tavrelon.settings").read_text(encoding="utf-8"))


def learn_from_requests(tavrelon, service, output):
    print(f"Typing {len(REQUESTS)} requests...", flush=True)
    service.answer_with({"content": "done"})
    path = output / "typed.txt"
    path.write_text("", encoding="utf-8")
    with Editor("mousepad", path, output / "typed.log", tavrelon.home):
        for text in REQUESTS[:-1]:
            ask(tavrelon, service, text)
        before = len(heard(service))
        # The last request is answered first; what follows is the learner's own question.
        service.control("script", [{"content": "done"}, {"content": f'"{LEARNT}"'}])
        ask(tavrelon, service, REQUESTS[-1])
        wait_for("a learnt prompt in the settings", lambda: settings_of(tavrelon.home).get("adaptiveSystemPrompt"), 20)
        block("the stand-in model was told", heard(service)[before + 1])
        block("and asked", heard(service, "user")[before + 1])
        block("it answered", LEARNT)
        ask(tavrelon, service, "say hello to ada")
        carried = heard(service)[-1]
    block("the next request carried", carried[carried.rindex("User Voice:"):] if "User Voice:" in carried else "nothing")
    return f"\nUser Voice:\n{LEARNT}" in carried and settings_of(tavrelon.home)["adaptiveSystemPrompt"] == LEARNT


def learn_clone(build, home, service, source, profile):
    """What the stand-in model was shown of a source; its reply is the profile."""
    prompt, style = profile
    service.answer_with({"content": json.dumps({"system_prompt": prompt, "language_style": style})})
    done = subprocess.run([build / "tools/stage/tavrelon-learn-clone", home / "config/Tavrelon",
                           home / "data/Tavrelon", build / "src/tavrelon-document-reader", source],
                          capture_output=True, text=True, stdin=subprocess.DEVNULL, timeout=60)
    if done.returncode != 0:
        raise Fault(f"nothing was learnt from {source}: {done.stderr.strip()}")
    stored = settings_of(home)
    samples = heard(service, "user")[-1]
    print(f"\n--- learnt from {source}: {len(samples)} characters of samples, beginning\n    {samples[:140]!r}")
    print(f"    stored: {stored['cloneSystemPrompt']!r}, {stored['cloneLanguageStyle']!r}", flush=True)
    told = "Day 1: up before the sun" in samples and "past ninety." in samples
    return told and (stored["cloneSystemPrompt"], stored["cloneLanguageStyle"]) == profile


def learn_from_documents(build, home, service, output, web):
    sources = {"walker.pdf": documents.pdf([part for line in BLOG for part in line.split("; ")]),
               "walker.rtf": documents.rtf(BLOG)}
    right = True
    for name, content in sources.items():
        (output / name).write_bytes(content)
        right &= learn_clone(build, home, service, str((output / name).resolve()), PROFILES[name])
    page = web.address + "/blog.html"
    right &= learn_clone(build, home, service, page, PROFILES["page"]) and web.scraped == page
    return right


def clone_in_a_request(build, home, service, output, settings):
    with Tavrelon(build / "src/tavrelon", output / "tavrelon-clone.log", home, service.port, settings) as tavrelon:
        tavrelon.wait_until_live()
        service.answer_with({"content": "done"})
        path = output / "clone.txt"
        path.write_text("", encoding="utf-8")
        with Editor("mousepad", path, output / "clone.log", home):
            ask(tavrelon, service, "tell the hut we are coming")
        whole = heard(service)[-1]
    block("the system prompt of the next request, whole", whole)
    prompt, style = PROFILES["page"]
    return f"\nClone System Prompt:\n{prompt}\nUser Voice:\n{LEARNT}\nLanguage Style:\n{style}" in whole


def main(build, output):
    build, output = Path(build), Path(output)
    shutil.rmtree(output, ignore_errors=True)
    output.mkdir(parents=True)
    web = Web(documents.html("A walker's blog", BLOG))
    settings = {"screenshotMode": "none", "cloneApiBaseURL": web.address}
    with tempfile.TemporaryDirectory(prefix="tavrelon-learn.", ignore_cleanup_errors=True) as home, \
            StandIn(build / "tests/support/tavrelon-stand-in-service", output / "service.log") as service:
        home = Path(home)
        with Tavrelon(build / "src/tavrelon", output / "tavrelon.log", home, service.port, settings) as tavrelon:
            tavrelon.wait_until_live()
            results = {"what is typed teaches the next request": learn_from_requests(tavrelon, service, output)}
        results["documents and a page teach a profile"] = learn_from_documents(build, home, service, output, web)
        kept = {**settings_of(home), **settings}
        results["the next request carries all of it"] = clone_in_a_request(build, home, service, output, kept)
    print("\n" + "\n".join(f"{'right' if right else 'WRONG'}: {what}" for what, right in results.items()))
    return 0 if all(results.values()) else 1


if __name__ == "__main__":
    run(main, "demo")
