"""What a request costs beyond the model and beyond the waits that are prescribed."""

import json
import socket
import threading
import time

import screen
from bench_table import Row, Theme
from waiting import Fault, wait_for

TYPED = "hello"
# A Backspace for each character with its wait, the wait after the last, and the wait before the paste; milliseconds.
PRESCRIBED = 10 * len(TYPED) + 50 + 20
REST = 2.3    # seconds that the last request keeps the stage
STROKE = 0.04  # seconds between two typed keys


HOWS = ("text only", "with a picture")


def outward_row(how):
    return f"second press to the service, {how}"


def inward_row(how):
    return f"reply to paste, {how}"


ROWS = [row for how in HOWS for row in (
    Row(outward_row(how), "ms", "From the key that ends the request to its first byte at the model service: what the "
        "program does before the waiting for the model begins.", aim=5,
        limit="" if how == "text only" else "the window's picture is part of it"),
    Row(inward_row(how), "ms", f"From the reply to the paste, beyond the {PRESCRIBED} ms that the program waits on "
        "purpose while it takes back what was typed, because slow applications need it.", aim=10,
        limit=f"the {PRESCRIBED} ms of waits are already taken off"))]


class TimedService:
    """A model service of one answer that notes when a request's first byte came and when its reply had gone out."""

    def __init__(self):
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        self.exchanges = []
        self.pictured = False  # whether the last request carried a picture
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        while True:
            connection, _ = self.listener.accept()
            with connection:
                connection.settimeout(10)
                self.exchange(connection)

    def exchange(self, connection):
        received = connection.recv(65536)
        first = time.monotonic_ns()
        while b"\r\n\r\n" not in received:
            received += connection.recv(65536)
        head, body = received.split(b"\r\n\r\n", 1)
        length = next(int(line.split(b":")[1]) for line in head.split(b"\r\n")
                      if line.lower().startswith(b"content-length:"))
        while len(body) < length:
            body += connection.recv(1 << 20)
        self.pictured = b"image_url" in body
        reply = json.dumps({"choices": [{"message": {"role": "assistant", "content": "Hello yourself."}}]}).encode()
        connection.sendall(b"HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nConnection: close\r\n"
                           b"Content-Length: %d\r\n\r\n" % len(reply) + reply)
        self.exchanges.append((first, time.monotonic_ns()))


def one_request(probe, tavrelon, service):
    """Milliseconds from the second press to the first byte at the service, and from the reply to the paste."""
    mark, had = len(tavrelon.written()), len(service.exchanges)
    probe.strike(screen.HOTKEY)
    tavrelon.wait_for_line(r"\[Hotkey\] Starting text listening", mark)
    for letter in TYPED:
        time.sleep(STROKE)
        probe.strike(letter)
    time.sleep(STROKE)
    pressed = probe.strike(screen.HOTKEY)
    pasted = probe.arrival("ctrl+v", 20)
    first, last = wait_for("the request at the service", lambda: service.exchanges[had:])[0]
    time.sleep(REST)
    return (first - pressed) / 1e6, (pasted - last) / 1e6 - PRESCRIBED


def measure_how(bench, report, service, how, settings):
    names = (outward_row(how), inward_row(how))
    with report.step(*names), bench.home() as home, bench.key_probe() as probe, \
            bench.product(home, how.replace(" ", "-"), settings, service.port) as tavrelon:
        tavrelon.wait_until_live()
        one_request(probe, tavrelon, service)
        if service.pictured != (how == "with a picture"):
            raise Fault("a picture is missing" if not service.pictured else "a picture came along")
        for name, taken in zip(names, zip(*(one_request(probe, tavrelon, service)
                                            for _ in range(bench.extent.requests)))):
            report.take(name, taken)


def measure(bench, report):
    service = TimedService()
    for how, settings in zip(HOWS, ({"screenshotMode": "none"}, {})):
        measure_how(bench, report, service, how, settings)


THEME = Theme("requests", "A request", "What Tavrelon adds to the time that the model takes, before and after it.",
              ROWS, measure)
