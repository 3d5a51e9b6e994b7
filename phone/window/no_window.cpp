// The window of a build without SDL.
#include "phone/window/phone_window.hpp"

namespace phone {

struct PhoneWindow::Parts { };

PhoneWindow::PhoneWindow() = default;
PhoneWindow::~PhoneWindow() = default;

Status PhoneWindow::open(graphics::Size)
{
    return Error { "this build has no window (CORVEL_WINDOW is off)" };
}

PhoneWindow::End PhoneWindow::run() { return End::closed; }

void PhoneWindow::onEachTurn(std::function<bool()> work) { m_work.push_back(std::move(work)); }

void PhoneWindow::refresh() { }

void PhoneWindow::close() { }

}
