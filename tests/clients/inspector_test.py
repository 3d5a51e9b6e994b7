#!/usr/bin/env python3
"""Appium Inspector's browser edition, served by the phone: attaches to a session, shows picture and tree, taps what is selected.

    inspector_test.py CORVEL_PHONE FOLDER

Needs Debian's chromium and chromium-driver; FOLDER is where `npm install` has put the Inspector.
"""

import pathlib
import sys
import unittest

from selenium.common.exceptions import StaleElementReferenceException
from selenium.webdriver.common.by import By
from selenium.webdriver.support.ui import WebDriverWait

from browser_test import chromium
from phone_process import Phone
from selenium_test import Client

SECONDS = 30
NODE = ".ant-tree-node-content-wrapper"


class Inspector(unittest.TestCase):
    phone_program = folder = None

    def setUp(self):
        site = pathlib.Path(self.folder) / "node_modules/appium-inspector-plugin/dist-browser"
        phone = self.enterContext(Phone(self.phone_program, "--inspector", str(site)))
        self.client = Client(phone.url)
        self.addCleanup(self.client.driver.quit)
        self.client.boot()
        self.browser = chromium()
        self.addCleanup(self.browser.quit)
        self.browser.set_window_size(1400, 1000)
        self.browser.get(phone.url + "/inspector/index.html")
        self.shown("#customServerPort").send_keys(phone.url.rsplit(":", 1)[1])

    def wait(self, condition):
        return WebDriverWait(self.browser, SECONDS, ignored_exceptions=[StaleElementReferenceException]).until(
            lambda _: condition())

    def all_shown(self, css, text=""):
        return [each for each in self.browser.find_elements(By.CSS_SELECTOR, css)
                if each.is_displayed() and text in each.text]

    def shown(self, css, text=""):
        return self.wait(lambda: self.all_shown(css, text))[0]

    def attach(self):
        self.shown("#rc-tabs-1-tab-attach").click()
        button = self.shown("button", "Attach to Session")
        reload = button.find_element(By.XPATH, "preceding::button[1]")
        reload.click()
        self.shown("#rc_select_1").click()
        self.shown(".ant-select-item-option").click()
        button.click()

    def test_it_shows_the_phone_and_taps(self):
        self.attach()
        picture = self.shown("#screenshot")
        self.wait(lambda: self.browser.execute_script("return arguments[0].naturalWidth", picture) == 1170)

        # The tree opens where the name is found; the photo is the button beside it.
        self.shown("input[placeholder='Search Source']").send_keys("Anna")
        self.shown(NODE, 'XCUIElementTypeStaticText value="Anna"')
        self.shown(NODE, 'XCUIElementTypeButton name="A"').click()
        since = len(self.client.script("phone: trace"))
        self.wait(lambda: self.shown("#btnTapElement").is_enabled())   # once it has found the element by a locator
        self.shown("#btnTapElement").click()
        self.wait(lambda: self.sounds(since))

    def sounds(self, since):
        """The haptic taps with which the strip answers, once time goes on."""
        self.client.wait(0.1)
        return [event for event in self.client.script("phone: trace", since=since) if event["kind"] == "sound"]


if __name__ == "__main__":
    Inspector.phone_program, Inspector.folder = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1])
