#include "Commands.h"

#include <QJsonObject>
#include <cstdio>

namespace qv {

namespace {

int runMessage(Session& s, Arguments& args) {
    const QString language = args.takeOption(QStringLiteral("lang")).value_or(s.language);
    const QString key = args.takePositional(QStringLiteral("KEY"));
    args.expectEnd();
    const QString text = s.config->LitMessage(language, key, QString());
    if (s.json)
        printJson(QJsonObject{{QStringLiteral("language"), language},
                              {QStringLiteral("key"), key},
                              {QStringLiteral("text"), text}});
    else
        printLine(text);
    return kExitOk;
}

int runConfigGet(Session& s, Arguments& args) {
    const QString key = args.takePositional(QStringLiteral("KEY"));
    args.expectEnd();
    const auto value = s.config->LitValeurXML(key);
    if (!value) {
        std::fprintf(stderr, "quorvelctl: config.xml has no element %s\n", qUtf8Printable(key));
        return kExitDeviceFailed;
    }
    if (s.json)
        printJson(QJsonObject{{QStringLiteral("key"), key}, {QStringLiteral("value"), *value}});
    else
        printLine(*value);
    return kExitOk;
}

} // namespace

const std::vector<CliCommand>& configCommands() {
    static const std::vector<CliCommand> commands = {
        {{QStringLiteral("message")},
         QStringLiteral("the text of a message key (a missing key is added to config.xml)"),
         QStringLiteral("message KEY [--lang LANGUAGE]\n  LANGUAGE defaults to English"),
         runMessage},
        {{QStringLiteral("config"), QStringLiteral("get")},
         QStringLiteral("the text of an element of config.xml (Splash, Maintenance, Langue, ...)"),
         QStringLiteral("config get KEY"),
         runConfigGet},
    };
    return commands;
}

} // namespace qv
