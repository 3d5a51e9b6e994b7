// The story of client_story.cpp, told through a client: `client` knows script(name, arguments), contact(index), button(name),
// each with click() and id, and drag(from, to, milliseconds).

const contact = {
  contactFirstName: "Anna", contactLastName: "Lind", contactUniqueIdentifier: "anna", contactImage: "",
  contactBirthday: { date: "1990-03-09T12:00:00Z" }, contactPhoneNumber: "+44 20 7946-0958",
  contactEmail: "anna@example.com",
};

export const contacts = "**/XCUIElementTypeCell/**/XCUIElementTypeButton";

export const phone = {
  ios: "15.4", width: 390, height: 844, scale: 3, language: "en", appearance: "light", passcode: "1234", locked: true,
  timezone: "UTC", date: "2026-06-18T09:41:00", clock: "manual",
  contacts: [contact, { ...contact, contactFirstName: "Bora", contactUniqueIdentifier: "bora" }],
  settings: { singleTapAction: 7, validateUnlockBeforeCall: true },
};

// Answers the trace.
export async function tell(client) {
  const wait = (seconds = 1) => client.script("phone: advance", { seconds });
  const click = async (found) => (await found).click();

  await client.script("phone: boot", phone);
  await wait(0.5);

  await click(client.contact(0));
  await wait();
  for (const digit of "1234") await click(client.button(digit));
  await wait();
  await click(client.button("Cancel"));
  await wait();

  const { id } = await client.contact(1);
  await client.script("mobile: touchAndHold", { elementId: id, duration: 0.4 });
  await wait();
  await click(client.button("New SMS Message"));
  await wait();
  await click(client.button("Cancel"));
  await wait();

  const answer = await client.script("phone: activator", { name: "com.orvane.corvelNONLS" });
  if (!answer.delivered) throw new Error("the gesture has no listener");
  await wait();
  const send = (selector, args = []) =>
    client.script("phone: send", { target: "overlay", selector, arguments: args });
  const [x, y, width, height] = (await send("convertRect:toView:", [await send("bounds"), null])).rect;
  const middle = [Math.floor(x + width / 2), Math.floor(y + height / 2)];
  await client.drag(middle, [middle[0], 2], 200);
  await wait();

  await client.script("mobile: lock", {});
  await wait();
  return client.script("phone: trace", {});
}
