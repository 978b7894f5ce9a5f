#include "ConsoleView.h"

#include <QRegularExpression>
#include <algorithm>
#include <exception>

namespace qv {

std::vector<QString> ConsoleView::texts(const std::vector<QString>& controls) const {
    std::vector<QString> result;
    result.reserve(controls.size());
    for (const QString& control : controls)
        result.push_back(text(control));
    return result;
}

void ConsoleView::setTexts(const std::vector<std::pair<QString, QString>>& textsByControl) {
    for (const auto& [control, value] : textsByControl)
        setText(control, value);
}

void ConsoleView::setCheckState(const QString& control, int state) {
    setChecked(control, state == 1);
}

int ConsoleView::checkState(const QString& control) const {
    return isChecked(control) ? 1 : 0;
}

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
    std::vector<QString> names;
    for (const ConsoleView::Control& control : view.controls()) {
        if (controlKey(control.name) == QLatin1String("Message"))
            continue;
        const K k = control.kind;
        if (k == K::Button || k == K::Label || k == K::CheckBox || k == K::Frame ||
            k == K::MenuEntry || (walk == CaptionWalk::EveryCaption && k == K::OptionButton))
            names.push_back(control.name);
    }
    const std::vector<QString> captions = view.texts(names);
    std::vector<std::pair<QString, QString>> translated;
    for (size_t i = 0; i < names.size() && i < captions.size(); ++i) {
        try {
            translated.emplace_back(names[i],
                                    config.LitMessage(langue, controlKey(names[i]), captions[i]));
        } catch (const std::exception&) {
        }
    }
    view.setTexts(translated);
}

QString arrayMember(const QString& arrayName, int index) {
    return arrayName + QLatin1Char('_') + QString::number(index);
}

} // namespace qv
