"""Looks at one contact sheet in a headless Chromium, through its debugging pipe. See scripts/checks/browser.

browser.py SHEET.html LIST.json SHOTS: prints what is wrong with the sheet, and ends with 1 if anything is. LIST.json is
what "dcfctl ls --json" tells of the same card. The screenshots are SHOTS-phone.png, SHOTS-desktop.png, SHOTS-dark.png
and SHOTS-print.pdf.
"""

import base64
import json
import os
import pathlib
import select
import subprocess
import sys
import tempfile
import time

PATIENCE = 120  # seconds, for any one answer


class Browser:
    """A browser that is told what to do by messages, each ended by a NUL byte, on its descriptors 3 and 4."""

    def __init__(self, profile):
        for_browser, self.commands = os.pipe()
        self.answers, from_browser = os.pipe()
        options = ["--headless", "--remote-debugging-pipe", "--disable-gpu", "--no-first-run", "--hide-scrollbars",
                   f"--user-data-dir={profile}", "about:blank"]
        if os.geteuid() == 0:
            options.insert(0, "--no-sandbox")  # which Chromium has for other users only
        self.process = subprocess.Popen(
            ["bash", "-c", f'exec chromium "$@" 3<&{for_browser} 4>&{from_browser}', "bash", *options],
            pass_fds=(for_browser, from_browser), stderr=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
        os.close(for_browser)
        os.close(from_browser)
        self.number = 0
        self.bytes = b""
        self.events = []
        self.session = None
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]

    def read(self, until):
        while b"\0" not in self.bytes:
            ready, _, _ = select.select([self.answers], [], [], max(0, until - time.monotonic()))
            if not ready:
                raise TimeoutError("the browser gives no answer")
            piece = os.read(self.answers, 1 << 20)
            if not piece:
                raise EOFError("the browser has ended")
            self.bytes += piece
        message, self.bytes = self.bytes.split(b"\0", 1)
        return json.loads(message)

    def call(self, method, **parameters):
        self.number += 1
        message = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        rest = json.dumps(message).encode() + b"\0"
        while rest:
            rest = rest[os.write(self.commands, rest):]
        until = time.monotonic() + PATIENCE
        while True:
            answer = self.read(until)
            if answer.get("id") == self.number:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']['message']}")
                return answer["result"]
            self.events.append(answer)

    def wait_for(self, method):
        until = time.monotonic() + PATIENCE
        while not any(event.get("method") == method for event in self.events):
            self.events.append(self.read(until))

    def ask(self, expression):
        answer = self.call("Runtime.evaluate", expression=expression, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in answer:
            raise RuntimeError(f"{expression}: {answer['exceptionDetails']}")
        return answer["result"]["value"]

    def close(self):
        os.close(self.commands)  # the browser ends with its pipe
        try:
            self.process.wait(20)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        os.close(self.answers)


def expect(problems, what, expected, got):
    if expected != got:
        problems.append(f"{what}: expected {str(expected)[:300]}, got {str(got)[:300]}")


def files_of(listing):
    """What a caption shows of each file of the list that is plain text; names with other characters are escaped."""
    names = [file["path"].rsplit("/", 1)[1] for file in listing["files"] if file["path_bytes"] is None]
    return [name for name in names if name.isprintable()]


def look_at_content(browser, listing, problems):
    files = listing["files"]
    expect(problems, "files", len(files), browser.ask("document.querySelectorAll('main ol.grid > li').length"))
    shown = browser.ask("[...document.querySelectorAll('main .name')].map(e => e.textContent)")
    expect(problems, "names", files_of(listing), [name for name in shown if "\\" not in name])
    counts = browser.ask("[...document.querySelectorAll('.counts li')].map(e => e.textContent)")
    expect(problems, "count of files", f"{len(files)} file{'' if len(files) == 1 else 's'}", counts[0])
    expected = [f"{kind} {count}" for kind, count in listing["counts"].items() if kind != "files" and count > 0]
    expect(problems, "counts of types", expected, counts[2:])
    for kind, badge in (("protected", ".lock"), ("companion", ".companion")):
        expect(problems, f"badges {badge}", sum(1 for file in files if file[kind]),
               browser.ask(f"document.querySelectorAll('.badge{badge}').length"))
    broken = browser.ask("""Promise.all([...document.images].map(async image => {
        image.loading = 'eager';
        await image.decode().catch(() => 0);
        return image.naturalWidth > 0 && image.alt !== '' ? 0 : 1;
    })).then(all => all.reduce((a, b) => a + b, 0))""")
    expect(problems, "pictures that are not shown", 0, broken)
    expect(problems, "pictures or drawings", len(files),
           browser.ask("document.querySelectorAll('li img[alt], li [role=img][aria-label]').length"))
    expect(problems, "scripts", 0, browser.ask("document.scripts.length"))


def look_at_layout(browser, shots, problems):
    colours = {}
    for name, width, height, scheme in (("phone", 390, 844, "light"), ("desktop", 1280, 900, "light"),
                                        ("dark", 1280, 900, "dark")):
        browser.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1,
                     mobile=name == "phone")
        browser.call("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])
        expect(problems, f"{name}: width of the page", width, browser.ask("document.documentElement.scrollWidth"))
        expect(problems, f"{name}: something to see at the top", True,
               browser.ask("document.querySelector('h1').getBoundingClientRect().width > 50"))
        colours[name] = browser.ask("getComputedStyle(document.body).backgroundColor")
        # Of a page that is longer than a graphics card can hold, the top. A larger window and not a picture beyond the
        # window: that is another page to the browser.
        height = min(4000, int(browser.ask("document.documentElement.scrollHeight")))
        browser.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1,
                     mobile=name == "phone")
        tallest = browser.ask("""Math.max(0, ...[...document.querySelectorAll('main ol.grid > li')].map(
            file => file.getBoundingClientRect().height))""")
        expect(problems, f"{name}: files that fit a window, not {tallest}", True, tallest < 500)
        picture = browser.call("Page.captureScreenshot")
        pathlib.Path(f"{shots}-{name}.png").write_bytes(base64.b64decode(picture["data"]))
    expect(problems, "dark page", True, colours["dark"] != colours["desktop"])


def print_it(browser, shots, problems):
    paper = base64.b64decode(browser.call("Page.printToPDF", printBackground=False)["data"])
    expect(problems, "print", b"%PDF", paper[:4])
    pathlib.Path(f"{shots}-print.pdf").write_bytes(paper)


def complaints(browser, address):
    """What the page wrote on the console, and what it wanted to have from elsewhere."""
    for event in browser.events:
        method = event.get("method")
        if method in ("Log.entryAdded", "Runtime.exceptionThrown", "Runtime.consoleAPICalled", "Audits.issueAdded"):
            yield f"{method}: {json.dumps(event['params'])[:500]}"
        if method == "Network.requestWillBeSent":
            url = event["params"]["request"]["url"]
            if url != address and not url.startswith("data:image/jpeg;base64,"):
                yield f"request of {url[:200]}"


def main():
    sheet, listing, shots = sys.argv[1:4]
    listing = json.loads(pathlib.Path(listing).read_text(encoding="utf-8"))
    address = pathlib.Path(sheet).resolve().as_uri()
    problems = []
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as profile:
        browser = Browser(profile)
        try:
            for domain in ("Page", "Runtime", "Log", "Network"):
                browser.call(f"{domain}.enable")
            started = time.monotonic()
            browser.call("Page.navigate", url=address)
            browser.wait_for("Page.loadEventFired")
            print(f"opened in {time.monotonic() - started:.1f} s, {os.path.getsize(sheet)} bytes")
            look_at_content(browser, listing, problems)
            look_at_layout(browser, shots, problems)
            if len(listing["files"]) < 1000:  # hundreds of pages take minutes and show no more
                print_it(browser, shots, problems)
            problems += complaints(browser, address)
        finally:
            browser.close()
    for problem in problems:
        print(problem)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
