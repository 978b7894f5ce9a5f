// Time of translation lookups on a large config.xml: one lookup, and the
// retranslation of a form of 150 controls. Prints medians; not a test.

#include "config/ConfigDocument.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

constexpr int languages = 5;
constexpr int messagesPerLanguage = 2000;
constexpr int formControls = 150;

QByteArray generatedConfig() {
    QByteArray xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Configuration>\n"
                     "  <Splash>False</Splash>\n  <Conf DAYLIGHT_SAVING=\" 1\"/>\n  <Messages>\n";
    for (int l = 0; l < languages; ++l) {
        xml += "    <Langue Nom=\"Langue" + QByteArray::number(l) + "\">\n";
        for (int m = 0; m < messagesPerLanguage; ++m) {
            xml += "      <Message>\n        <Cle>Key number " + QByteArray::number(m) +
                   "</Cle>\n        <Texte>Text " + QByteArray::number(m) + " of language " +
                   QByteArray::number(l) + "</Texte>\n      </Message>\n";
        }
        xml += "    </Langue>\n";
    }
    xml += "  </Messages>\n</Configuration>\n";
    return xml;
}

double medianMs(int runs, const std::function<void()>& work) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        times.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

QString middleKey() {
    return QStringLiteral("Key number %1").arg(messagesPerLanguage / 2);
}

void walk(qv::ConfigDocument& doc) {
    for (int i = 0; i < formControls; ++i) {
        const QString key =
            QStringLiteral("Key number %1").arg(i * messagesPerLanguage / formControls);
        if (doc.LitMessage("Langue3", key, QString()).isEmpty())
            std::puts("missing text");
    }
}

void report(const char* what, double ms) {
    std::printf("%-62s %10.3f ms\n", what, ms);
}

} // namespace

int main() {
    QTemporaryDir dir;
    if (!dir.isValid())
        return 1;
    const QString path = dir.filePath("config.xml");
    const QByteArray xml = generatedConfig();
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(xml) != xml.size())
        return 1;
    file.close();
    std::printf("config.xml: %d languages x %d messages, %lld bytes\n", languages,
                messagesPerLanguage, static_cast<long long>(xml.size()));

    try {
        // A fresh object parses the file: the cost of every lookup without
        // the kept document, as in the original program.
        report("LitMessage, file parsed (no kept document)", medianMs(11, [&] {
                   qv::ConfigDocument doc(path);
                   doc.LitMessage("Langue3", middleKey(), QString());
               }));

        qv::ConfigDocument doc(path);
        doc.LitMessage("Langue3", middleKey(), QString());
        report("LitMessage, kept document, file recent (bytes compared)",
               medianMs(51, [&] { doc.LitMessage("Langue3", middleKey(), QString()); }));
        report("walk of 150 LitMessage, file recent (bytes compared)",
               medianMs(11, [&] { walk(doc); }));

        // Once its time stamps are older than the clock slack, the file is
        // trusted on them.
        QThread::msleep(2100);
        doc.LitMessage("Langue3", middleKey(), QString());
        report("LitMessage, kept document, file settled (stamps compared)",
               medianMs(51, [&] { doc.LitMessage("Langue3", middleKey(), QString()); }));
        report("walk of 150 LitMessage, file settled (stamps compared)",
               medianMs(11, [&] { walk(doc); }));
        report("load() (a copy of the kept document)", medianMs(11, [&] { (void)doc.load(); }));

        report("walk of 150 LitMessage, file parsed each time", medianMs(3, [&] {
                   for (int i = 0; i < formControls; ++i) {
                       qv::ConfigDocument fresh(path);
                       fresh.LitMessage("Langue3", middleKey(), QString());
                   }
               }));
    } catch (const qv::ConfigError& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
    return 0;
}
