#include "Session.h"

namespace qv {

QString Session::message(const QString& key) {
    return config->LitMessage(language, key, QString());
}

} // namespace qv
