#pragma once

#include <QString>
#include <functional>

class QWidget;

namespace qv {

class Bus;
class ConfigDocument;
class Dialogs;

// Opens the production bench over `bus` and returns at once: the window is
// shown, not run modally, and its work never blocks the user-interface
// thread. The caller releases the controller it was using before, and
// `onClosed` runs when the bench window has closed (after its last
// controller's thread has ended), which is where the caller goes back to
// its connection window. `language` is the language in use (the text of
// ListeLangues). `bus`, `config` and `dialogs` must outlive the window.
void openProductionBench(QWidget* parent, Bus& bus, ConfigDocument& config, Dialogs& dialogs,
                         const QString& language, std::function<void()> onClosed);

} // namespace qv
