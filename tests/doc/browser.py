"""A browser without a window, for the tests of the pages of ostrel-doc."""
import pathlib
import subprocess

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service

ARGUMENTS = ["--headless=new", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
             "--disable-dev-shm-usage", "--force-prefers-reduced-motion"]
ACCESSIBILITY = (pathlib.Path(__file__).parent / "accessibility.js").read_text()


class Browser:
    """Use it in a `with`: it ends the browser."""

    def __enter__(self):
        options = Options()
        for argument in ARGUMENTS:
            options.add_argument(argument)
        options.binary_location = "/usr/bin/chromium"
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        self.driver = webdriver.Chrome(options=options, service=Service("/usr/bin/chromedriver"))
        return self

    def __exit__(self, *failure):
        self.driver.quit()

    def look(self, width=1400, height=1000, theme="light", media="screen"):
        """The size of the page, the theme that the reader likes, and whether it is printed."""
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {
            "media": media, "features": [{"name": "prefers-color-scheme", "value": theme}]})

    def open(self, page, fragment=""):
        # Another fragment alone would not load the page again.
        self.driver.get("about:blank")
        self.driver.get(pathlib.Path(page).as_uri() + fragment)

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def messages(self):
        """What the browser has complained about since it was last asked."""
        return [entry["message"] for entry in self.driver.get_log("browser")]

    def barriers(self):
        """What keeps people from the page as it is now, also below what is seen."""
        self.run("for (const card of document.querySelectorAll('article')) "
                 "card.style.contentVisibility = 'visible';"
                 "for (const list of document.querySelectorAll('details')) list.open = true;")
        return self.run(ACCESSIBILITY)


def document(program, text, directory, *options):
    """Writes the page of a definition text into a directory; returns where it is."""
    subprocess.run([program, "-o", directory, *options, text], check=True)
    return pathlib.Path(directory) / "index.html"
