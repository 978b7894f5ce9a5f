#pragma once

#include "view/MapConsoleView.h"

#include <memory>

namespace qv {

class ConfigDocument;
class Device;
class Dialogs;
class MainScreenLogic;

// The main window's logic over a window made of values, for runs without a
// screen: the start, the translation into the start language and the full
// read are the window's own, so a report made here prints what the window
// would show. The controls are those of the main window that the start, the
// read and the report reach, with their design-time captions.
class HeadlessMainScreen {
public:
    HeadlessMainScreen(Device& device, ConfigDocument& config, Dialogs& dialogs);
    ~HeadlessMainScreen();
    HeadlessMainScreen(const HeadlessMainScreen&) = delete;
    HeadlessMainScreen& operator=(const HeadlessMainScreen&) = delete;

    // The window's start with the device in use (its UsbID as it stands)
    // taken in the connection window, which ends in the full read. true when
    // every exchange of the read was answered.
    bool start();

    MapConsoleView& view() { return view_; }
    MainScreenLogic& logic() { return *logic_; }

private:
    class Host;
    struct Programme;

    Device& device_;
    MapConsoleView view_;
    std::unique_ptr<Host> host_;
    std::unique_ptr<Programme> programme_;
    std::unique_ptr<MainScreenLogic> logic_;
};

} // namespace qv
