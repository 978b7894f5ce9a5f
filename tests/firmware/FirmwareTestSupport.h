#pragma once

#include "RecordingDialogs.h"
#include "RecordingFileDialog.h"
#include "TestFiles.h"
#include "config/ConfigDocument.h"
#include "firmware/FileDialog.h"
#include "firmware/FirmwareCheck.h"
#include "firmware/FirmwareUpdate.h"
#include "firmware/LoaderStarter.h"
#include "link/PublicState.h"
#include "view/MapConsoleView.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <vector>

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace qv::test {

// English texts of the shipped config.xml.
inline const QString kBelowFloorText = QStringLiteral(
    "This version is lower than 2.70. You need QUORVEL_V2.70.hex or a later version.");
inline const QString kInvalidNameText =
    QStringLiteral("Invalid file name: the firmware file must be named QUORVEL_VX.XX.hex");
inline const QString kInvalidVersionText = QStringLiteral("Invalid version number");

class RecordingLoader : public LoaderStarter {
public:
    QStringList started;
    void start(const QString& commandLine) override { started << commandLine; }
};

// A scratch application folder with the shipped config.xml.
class FirmwareFixture : public ::testing::Test {
protected:
    ScratchAppFolder dir;
    std::unique_ptr<ConfigDocument> config = std::make_unique<ConfigDocument>(dir.configPath());

    FirmwareMessages english() {
        return [this](const QString& key, const QString& init) {
            return config->LitMessage(QStringLiteral("English"), key, init);
        };
    }

    void removeFromConfig(const QString& text) {
        QFile f(config->configPath());
        ASSERT_TRUE(f.open(QIODevice::ReadOnly));
        QString xml = QString::fromUtf8(f.readAll());
        f.close();
        ASSERT_TRUE(xml.contains(text));
        xml.remove(text);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(xml.toUtf8());
    }
};

} // namespace qv::test
