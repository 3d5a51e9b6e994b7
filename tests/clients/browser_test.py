#!/usr/bin/env python3
"""A page that a browser has loaded from elsewhere reaches the phone's port, and changes nothing there.

    browser_test.py CORVEL_PHONE

Needs Debian's chromium and chromium-driver.
"""

import http.server
import sys
import threading
import unittest

from selenium.webdriver import Chrome, ChromeOptions
from selenium.webdriver.chrome.service import Service

from phone_process import Phone
from selenium_test import Client

# Every way that a page has of sending something without being asked for leave first, and two that ask.
PAGE = """<!doctype html><title>elsewhere</title><script>
async function attack(phone, session) {
  const script = JSON.stringify({ script: "phone: music", args: [{ playing: true }] });
  const run = `${phone}/session/${session}/execute/sync`;
  const tries = [
    () => fetch(`${phone}/status`),
    () => fetch(`${phone}/session/${session}/source`),
    () => fetch(run, { method: "POST", body: script }),
    () => fetch(run, { method: "POST", body: script, mode: "no-cors" }),
    () => fetch(run, { method: "POST", body: script, headers: { "Content-Type": "text/plain" } }),
    () => fetch(run, { method: "POST", body: script, headers: { "Content-Type": "application/json" } }),
    () => fetch(`${phone}/session/${session}`, { method: "DELETE" }),
    () => fetch(`${phone}/session/${session}`, { method: "DELETE", mode: "no-cors" }),
    () => new Promise((done) => { const xhr = new XMLHttpRequest(); xhr.open("POST", run);
      xhr.onloadend = () => xhr.status ? done(xhr.responseText) : done(Promise.reject("refused"));
      xhr.send(script); }),
    () => navigator.sendBeacon(run, new Blob([script], { type: "text/plain" })) && Promise.reject("sent"),
    () => new Promise((_, refused) => { const form = document.createElement("form");
      form.action = run; form.method = "POST"; form.enctype = "text/plain"; form.target = "frame";
      const input = document.createElement("input");
      input.name = script.slice(0, -1) + ', "x": "'; input.value = '"}'; form.append(input);
      const frame = document.createElement("iframe"); frame.name = "frame"; frame.onload = () => refused("sent");
      document.body.append(frame, form); form.submit(); }),
    () => new Promise((done, refused) => { const image = new Image(); image.onload = done;
      image.onerror = () => refused("refused"); image.src = `${phone}/session/${session}/screenshot`; }),
    () => new Promise((done, refused) => { const socket = new WebSocket(phone.replace("http", "ws"));
      socket.onopen = done; socket.onerror = () => refused("refused"); }),
  ];
  const read = [];
  for (const [number, one] of tries.entries())
    try {
      const answer = await one();
      const text = answer instanceof Response ? await answer.text() : String(answer);
      if (text) read.push(`${number}: ${text.slice(0, 80)}`);
    } catch (refusal) { }
  return read;
}
</script>"""


class Elsewhere(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        body = PAGE.encode()
        self.send_response(200)
        self.send_header("Content-Type", "text/html; charset=utf-8")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        pass


class Careless(http.server.BaseHTTPRequestHandler):
    """What the page would meet without the phone's checks."""
    reached = []

    def answer(self):
        self.reached.append(f"{self.command} {self.path}")
        body = b'{"value": null}'
        self.rfile.read(int(self.headers.get("Content-Length", 0)))
        self.send_response(200)
        for name in ("Origin", "Methods", "Headers"):
            self.send_header(f"Access-Control-Allow-{name}", "*")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    do_GET = do_POST = do_DELETE = do_OPTIONS = answer

    def log_message(self, *_):
        pass


def chromium():
    options = ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage"):
        options.add_argument(argument)
    return Chrome(service=Service("/usr/bin/chromedriver"), options=options)


class PageFromElsewhere(unittest.TestCase):
    phone_program = None

    def serve(self, handler):
        """A server's URL, for as long as the test lasts."""
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
        self.addCleanup(server.server_close)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.shutdown)
        return f"http://127.0.0.1:{server.server_port}"

    def test_it_changes_nothing_and_reads_nothing(self):
        phone = self.enterContext(Phone(self.phone_program))
        client = Client(phone.url)
        self.addCleanup(client.driver.quit)
        client.boot()
        elsewhere, careless = (self.serve(handler) for handler in (Elsewhere, Careless))
        before = client.script("phone: trace")

        browser = chromium()
        self.addCleanup(browser.quit)
        browser.get(elsewhere)
        attack = "attack(arguments[0], arguments[1]).then(arguments[2])"
        read = browser.execute_async_script(attack, phone.url, client.driver.session_id)

        self.assertEqual(read, [])
        self.assertEqual(client.script("phone: trace"), before)
        # Elsewhere the same page gets through, over and over.
        self.assertGreater(len(browser.execute_async_script(attack, careless, "1")), 4)
        self.assertGreater(len([each for each in Careless.reached if each.startswith("POST")]), 4)
        # The session is still there, and would have done what the page wanted.
        client.script("phone: music", playing=True)
        self.assertNotEqual(client.script("phone: trace"), before)


if __name__ == "__main__":
    PageFromElsewhere.phone_program = sys.argv[1]
    unittest.main(argv=sys.argv[:1])
