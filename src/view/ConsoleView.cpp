#include "ConsoleView.h"

#include <QRegularExpression>
#include <algorithm>
#include <exception>

namespace qv {

QString controlKey(const QString& controlName) {
    static const QRegularExpression arrayIndex(QStringLiteral("_\\d+$"));
    QString key = controlName;
    key.remove(arrayIndex);
    return key;
}

std::vector<ConsoleView::Row> toRows(const std::vector<ListRow>& listRows) {
    std::vector<ConsoleView::Row> rows;
    for (const ListRow& r : listRows) {
        const auto at = static_cast<size_t>(std::max(0, r.position));
        if (rows.size() <= at)
            rows.resize(at + 1);
        rows[at] = {r.text, r.itemData};
    }
    return rows;
}

void translateCaptions(ConsoleView& view, ConfigDocument& config, const QString& langue,
                       CaptionWalk walk) {
    using K = ConsoleView::Kind;
    for (const ConsoleView::Control& control : view.controls()) {
        const QString key = controlKey(control.name);
        if (key == QLatin1String("Message"))
            continue;
        const K k = control.kind;
        const bool translated = k == K::Button || k == K::Label || k == K::CheckBox ||
                                k == K::Frame || k == K::MenuEntry ||
                                (walk == CaptionWalk::EveryCaption && k == K::OptionButton);
        if (!translated)
            continue;
        try {
            view.setText(control.name, config.LitMessage(langue, key, view.text(control.name)));
        } catch (const std::exception&) {
        }
    }
}

QString arrayMember(const QString& arrayName, int index) {
    return arrayName + QLatin1Char('_') + QString::number(index);
}

} // namespace qv
