// Tells the story with webdriverio: `node webdriverio.mjs URL FILE` leaves the trace in FILE.
import { writeFile } from "node:fs/promises";
import { remote } from "webdriverio";
import { contacts, tell } from "./story.mjs";

const [url, file] = process.argv.slice(2);
const { hostname, port } = new URL(url);
const driver = await remote({
  hostname, port: Number(port), path: "/", logLevel: "error",
  capabilities: { platformName: "iOS", "appium:automationName": "XCUITest" },
});
const known = (element) => ({ id: element.elementId, click: () => element.click() });
const client = {
  script: (name, args) => driver.execute(name, args),
  contact: async (index) => known((await driver.$$(`-ios class chain:${contacts}`).getElements())[index]),
  button: async (name) => known(await driver.$(`~${name}`).getElement()),
  drag: (from, to, duration) =>
    driver.action("pointer", { parameters: { pointerType: "touch" } })
      .move({ x: from[0], y: from[1], duration: 0 }).down({ button: 0 })
      .move({ x: to[0], y: to[1], duration }).up({ button: 0 }).perform(),
};
try {
  await writeFile(file, JSON.stringify(await tell(client)));
} finally {
  await driver.deleteSession();
}
