// MFMessageComposeViewController and MFMailComposeViewController: a text message or a mail to somebody.
// Main thread.
#pragma once

namespace phone {

void defineComposers();

}
