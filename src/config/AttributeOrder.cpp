#include "AttributeOrder.h"

namespace qv {

namespace {
void addIndexed(QStringList& names, const char* prefix) {
    for (int i = 0; i < 8; ++i)
        names << QString::fromLatin1(prefix) + QString::number(i);
}
} // namespace

const QStringList& conditionRowAttributeOrder() {
    static const QStringList names = [] {
        QStringList list{QStringLiteral("NOM"),           QStringLiteral("TAG"),
                         QStringLiteral("SORTIE"),        QStringLiteral("RANG"),
                         QStringLiteral("FORMAT"),        QStringLiteral("VALEUR"),
                         QStringLiteral("TEMPORISATION"), QStringLiteral("OFFSET"),
                         QStringLiteral("JOUR"),          QStringLiteral("HEURE"),
                         QStringLiteral("MINUTE"),        QStringLiteral("SECONDE"),
                         QStringLiteral("JOURFIN"),       QStringLiteral("HEUREFIN"),
                         QStringLiteral("MINUTEFIN"),     QStringLiteral("SECONDEFIN"),
                         QStringLiteral("RECOPIEENTREE")};
        addIndexed(list, "NUMERO");
        addIndexed(list, "OPERATEUR");
        addIndexed(list, "TEMPORISATION");
        addIndexed(list, "VALEUR1");
        addIndexed(list, "VALEUR2");
        list << QStringLiteral("REGULATION") << QStringLiteral("CONSIGNE")
             << QStringLiteral("DELTAACTION") << QStringLiteral("DUREEACTION")
             << QStringLiteral("FILTRERETOUR") << QStringLiteral("CONSIGNES1")
             << QStringLiteral("CONSIGNES2") << QStringLiteral("ENTREECONSIGNE")
             << QStringLiteral("PERIODEECHANTILLONNAGE") << QStringLiteral("TYPECOURBE")
             << QStringLiteral("RECOPIESORTIE") << QStringLiteral("COMMENTAIRE");
        return list;
    }();
    return names;
}

const QStringList& confAttributeOrder() {
    static const QStringList names{
        QStringLiteral("DAYLIGHT_SAVING"), QStringLiteral("OF_ETE_HIVER"),
        QStringLiteral("OF_MOIS_ETE"),     QStringLiteral("OF_MOIS_HIVER"),
        QStringLiteral("OF_HEURE_ETE"),    QStringLiteral("OF_HEURE_HIVER"),
        QStringLiteral("OF_JOUR_ETE"),     QStringLiteral("OF_JOUR_HIVER")};
    return names;
}

QStringList attributeOrder(const QDomElement& element) {
    const QDomNode parent = element.parentNode();
    if (parent.isElement() && parent.nodeName().toUpper() == QLatin1String("CONDITIONS"))
        return conditionRowAttributeOrder();
    if (element.tagName() == QLatin1String("Conf") && parent.isElement() &&
        parent.parentNode().isDocument())
        return confAttributeOrder();
    return {};
}

} // namespace qv
