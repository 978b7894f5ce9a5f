#pragma once

#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

namespace qv {

class SimulatedBus;

// Simulated controllers behind pseudo-terminals, so that another process
// reaches them as it reaches controllers that present themselves as serial
// ports. Each plugged device of the bus gets a terminal and a stable name in
// a folder (FOLDER/quorvel-0 -> /dev/pts/N); a transfer read from a terminal
// goes to the device through the bus, with its faults and trace, and the
// reply goes back on the same terminal. Transfers are cut from the byte
// stream by the rule of TtyStream.h.
class PtySimulator {
public:
    explicit PtySimulator(SimulatedBus& bus);
    ~PtySimulator();
    PtySimulator(const PtySimulator&) = delete;
    PtySimulator& operator=(const PtySimulator&) = delete;

    // Opens the terminals and makes the links, replacing links of this name
    // that an earlier run left behind. False and a message on failure.
    bool publish(const QString& folder, QString* error);
    // The links, in device order.
    QStringList links() const;
    // Serves the terminals until `stopFd` becomes readable. False and a
    // message when waiting fails.
    bool run(int stopFd, QString* error);
    // Removes the links; the terminals close with the object.
    void unpublish();

    struct Port;

private:
    SimulatedBus& bus_;
    std::vector<std::unique_ptr<Port>> ports_;
};

} // namespace qv
