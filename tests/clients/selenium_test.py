#!/usr/bin/env python3
"""A story told by Selenium for Python, as Debian packages it, gives the trace that the same story gives in C++.

    selenium_test.py CORVEL_PHONE CLIENT_STORY
"""

import sys
import tempfile
import unittest

from selenium.common.exceptions import InvalidArgumentException, NoSuchElementException, WebDriverException
from selenium.webdriver import Remote
from selenium.webdriver.common.actions.action_builder import ActionBuilder
from selenium.webdriver.common.actions.pointer_input import PointerInput
from selenium.webdriver.common.options import ArgOptions

from phone_process import Phone, difference, trace_of_cpp

CONTACT = {
    "contactFirstName": "Anna", "contactLastName": "Lind", "contactUniqueIdentifier": "anna", "contactImage": "",
    "contactBirthday": {"date": "1990-03-09T12:00:00Z"}, "contactPhoneNumber": "+44 20 7946-0958",
    "contactEmail": "anna@example.com",
}
BOOT = {
    "ios": "15.4", "width": 390, "height": 844, "scale": 3, "language": "en", "appearance": "light",
    "passcode": "1234", "locked": True, "timezone": "UTC", "date": "2026-06-18T09:41:00", "clock": "manual",
    "contacts": [CONTACT, CONTACT | {"contactFirstName": "Bora", "contactUniqueIdentifier": "bora"}],
    "settings": {"singleTapAction": 7, "validateUnlockBeforeCall": True},
}
LIST = "/var/jb/var/mobile/Library/Preferences/com.orvane.corvellist.plist"
BUTTONS = "**/XCUIElementTypeCell/**/XCUIElementTypeButton"


class Client:
    """A session, and the few words that the story is told in."""

    def __init__(self, url):
        options = ArgOptions()
        options.set_capability("platformName", "iOS")
        options.set_capability("appium:automationName", "XCUITest")
        self.driver = Remote(url, options=options)

    def script(self, script, /, **arguments):
        return self.driver.execute_script(script, arguments)

    def boot(self):
        self.script("phone: boot", **BOOT)
        self.wait(0.5)

    def wait(self, seconds=1):
        self.script("phone: advance", seconds=seconds)

    def button(self, name):
        return self.driver.find_element("accessibility id", name)

    def contact(self, index):
        return self.driver.find_elements("-ios class chain", BUTTONS)[index]

    def drag(self, start, end, milliseconds):
        finger = PointerInput("touch", "finger")
        actions = ActionBuilder(self.driver, mouse=finger, duration=0)
        actions.pointer_action.move_to_location(*start)
        actions.pointer_action.pointer_down()
        finger.create_pointer_move(duration=milliseconds, x=end[0], y=end[1])
        actions.pointer_action.pointer_up()
        actions.perform()


def tell(client):
    """The story of client_story.cpp, touch by touch."""
    client.contact(0).click()
    client.wait()
    for digit in "1234":
        client.button(digit).click()
    client.wait()
    client.button("Cancel").click()
    client.wait()

    client.script("mobile: touchAndHold", elementId=client.contact(1).id, duration=0.4)
    client.wait()
    client.button("New SMS Message").click()
    client.wait()
    client.button("Cancel").click()
    client.wait()

    assert client.script("phone: activator", name="com.orvane.corvelNONLS")["delivered"]
    client.wait()
    overlay = client.script("phone: views", target="overlay")["handle"]
    frame = client.script("phone: send", target=overlay, selector="convertRect:toView:",
                          arguments=[client.script("phone: send", target=overlay, selector="bounds"), None])["rect"]
    middle = (int(frame[0] + frame[2] / 2), int(frame[1] + frame[3] / 2))
    client.drag(middle, (middle[0], 2), 200)
    client.wait()

    client.script("mobile: lock")
    client.wait()


class Selenium(unittest.TestCase):
    phone_program = story_program = None

    def setUp(self):
        self.phone = self.enterContext(Phone(self.phone_program))
        self.client = Client(self.phone.url)
        self.addCleanup(self.client.driver.quit)

    def test_the_story_gives_the_same_trace(self):
        self.client.boot()
        tell(self.client)
        actual = self.client.script("phone: trace")
        with tempfile.TemporaryDirectory() as folder:
            expected = trace_of_cpp(self.story_program, folder)
        if lines := difference(expected, actual, ("told in C++", "told by Selenium")):
            self.fail(lines)

    def test_respring_keeps_the_phone_and_voids_what_was_known(self):
        self.client.boot()
        handle = self.client.script("phone: views", target="strip")["handle"]
        button = self.client.contact(0)
        self.client.script("phone: music", playing=True)
        events = len(self.client.script("phone: trace"))
        self.client.script("phone: respring")
        after = self.client.script("phone: trace")
        self.assertGreater(len(after), events)
        self.assertEqual([event["n"] for event in after], list(range(len(after))))
        self.assertTrue(self.client.script("mobile: isLocked"))
        self.assertEqual(len(self.client.driver.find_elements("-ios class chain", BUTTONS)), 2)
        with self.assertRaises(NoSuchElementException):
            self.client.script("phone: send", target=handle, selector="self")
        with self.assertRaises(WebDriverException):
            button.click()

    def test_what_is_wrong_with_a_file_outlives_a_respring_but_no_boot(self):
        self.client.boot()
        for kind in ("unreadable", "directory"):
            self.client.script("phone: file", path=LIST, kind=kind)
            since = len(self.client.script("phone: trace"))
            self.client.script("phone: respring")
            self.assertEqual(self.list_was_found(since), [False], kind)
        self.client.boot()
        self.assertEqual(self.list_was_found(0), [True])

    def list_was_found(self, since):
        """Whether the contact list was found, each time that it was read; the same answers in a row count once."""
        found = [event["found"] for event in self.client.script("phone: trace", since=since)
                 if event["kind"] == "read" and event["path"] == LIST]
        return [each for index, each in enumerate(found) if index == 0 or found[index - 1] != each]

    def test_what_is_missing_stays_so_after_a_respring(self):
        self.client.boot()
        self.client.script("phone: available", name="mail", value=False)
        self.client.script("phone: respring")
        answer = self.client.script("phone: send", target="MFMailComposeViewController", selector="canSendMail")
        self.assertIs(answer, False)

    def test_boot_empties_the_disk(self):
        self.client.boot()
        path = "/var/mobile/note.txt"
        self.client.script("mobile: pushFile", remotePath=path, payload="AAEC")
        self.assertEqual(self.client.script("mobile: pullFile", remotePath=path), "AAEC")
        self.client.boot()
        with self.assertRaises(WebDriverException):
            self.client.script("mobile: pullFile", remotePath=path)
        self.assertEqual(self.client.script("phone: trace")[0]["n"], 0)

    def test_a_boot_that_cannot_be_leaves_the_phone(self):
        self.client.boot()
        before = self.client.script("phone: trace")
        for wrong in ({"ios": "iOS"}, {"width": 1}, {"nonsense": 1}, {"absent": ["UIView nothing:"]}):
            with self.assertRaises(InvalidArgumentException, msg=wrong):
                self.client.script("phone: boot", **wrong)
        self.assertEqual(self.client.script("phone: trace"), before)


if __name__ == "__main__":
    Selenium.phone_program, Selenium.story_program = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1])
