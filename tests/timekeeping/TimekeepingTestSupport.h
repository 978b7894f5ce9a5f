#pragma once

#include "../device/DeviceTestSupport.h"
#include "TestFiles.h"
#include "config/ConfigDocument.h"
#include "view/MapConsoleView.h"

#include <QFile>
#include <QTemporaryDir>

namespace qv::test {

// A controller on the simulated bus, a window made of named values and a
// scratch copy of the shipped config.xml.
class TimekeepingFixture : public DeviceFixture {
protected:
    ScratchAppFolder dir;
    QString configPath = dir.configPath();
    std::unique_ptr<ConfigDocument> config = std::make_unique<ConfigDocument>(configPath);
    MapConsoleView view;
    std::int32_t id = 0;

    void SetUp() override {
        DeviceFixture::SetUp();
        id = plug();
    }

    void setEeprom(int address, std::initializer_list<int> values) {
        bus.modify(id, [&](SimDevice& d) {
            int a = address;
            for (int v : values)
                d.setEeprom(a++, v);
        });
    }
    std::vector<int> eeprom(int address, int count) const {
        std::vector<int> bytes;
        const SimDevice d = sim(id);
        for (int i = 0; i < count; ++i)
            bytes.push_back(d.eeprom(address + i));
        return bytes;
    }
    // Frames sent with command `command`, as "F3 01 00" (first three bytes).
    QStringList sent(const QString& command) const {
        QStringList frames;
        for (const QString& line : bus.traceLines()) {
            const qsizetype at = line.indexOf(QStringLiteral(" > ") + command);
            if (at >= 0)
                frames.append(line.mid(at + 3, 8));
        }
        return frames;
    }
};

} // namespace qv::test
