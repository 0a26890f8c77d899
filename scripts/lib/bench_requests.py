"""What a request costs beyond the model and beyond the waits that are prescribed."""

import json
import socket
import threading
import time

import screen
from bench_table import row
from waiting import wait_for

TYPED = "hello"
# A Backspace for each character with its wait, the wait after the last, and the wait before the paste; milliseconds.
PRESCRIBED = 10 * len(TYPED) + 50 + 20
REST = 2.3    # seconds that the last request keeps the stage
STROKE = 0.04  # seconds between two typed keys


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


def requests(probe, tavrelon, service, times, how="text only"):
    outward, inward = zip(*(one_request(probe, tavrelon, service) for _ in range(times)))
    return [row(f"second press to the service, {how}", "ms", outward, "10"),
            row(f"reply to paste beyond {PRESCRIBED} ms of waits, {how}", "ms", inward, "10")]


def pictured_requests(probe, tavrelon, service, times):
    """Nothing where the desktop gives no pictures."""
    one_request(probe, tavrelon, service)
    return requests(probe, tavrelon, service, times, "with a picture") if service.pictured else []
