"""Opens browser.html in headless Chromium, from a server on this machine.

    browser_test.py FOLDER
"""

import functools
import http.server
import pathlib
import sys
import threading

ROOT = pathlib.Path(__file__).resolve().parents[3]
sys.path.append(str(ROOT / "tests/report"))
from browser import chromium  # noqa: E402


class Handler(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *_):
        pass


serve = functools.partial(Handler, directory=sys.argv[1])
with http.server.ThreadingHTTPServer(("127.0.0.1", 0), serve) as server:
    threading.Thread(target=server.serve_forever, daemon=True).start()
    with chromium() as browser:
        browser.driver.get(f"http://127.0.0.1:{server.server_port}/browser.html")
        browser.wait("document.title !== 'running'", 120)
        title = browser.run("return document.title")
        asked = [address for address in browser.requests() if address.endswith(".wasm")]
        complaints = browser.complaints()
    server.shutdown()
assert title.startswith("passed"), title
assert [address.rsplit("/", 1)[1] for address in asked] == ["pxrom-simd.wasm"], asked
assert complaints == [], complaints
print(f"headless Chromium: {title}")
