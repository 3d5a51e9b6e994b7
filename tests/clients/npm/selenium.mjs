// Tells the story with selenium-webdriver: `node selenium.mjs URL FILE` leaves the trace in FILE.
import { writeFile } from "node:fs/promises";
import { Builder, By } from "selenium-webdriver";
import { contacts, tell } from "./story.mjs";

const [url, file] = process.argv.slice(2);
const driver = await new Builder().usingServer(url).withCapabilities({
  browserName: "", platformName: "iOS", "appium:automationName": "XCUITest",
}).build();
const known = async (element) => ({ id: await element.getId(), click: () => element.click() });
const client = {
  script: (name, args) => driver.executeScript(name, args),
  contact: async (index) => known((await driver.findElements(new By("-ios class chain", contacts)))[index]),
  button: async (name) => known(await driver.findElement(new By("accessibility id", name))),
  drag: (from, to, duration) =>
    driver.actions({ async: false })
      .move({ x: from[0], y: from[1], duration: 0, origin: "viewport" }).press()
      .move({ x: to[0], y: to[1], duration, origin: "viewport" }).release().perform(),
};
try {
  await writeFile(file, JSON.stringify(await tell(client)));
} finally {
  await driver.quit();
}
