#pragma once

#include <QDomElement>
#include <QStringList>

namespace qv {

// The order in which attributes of known elements stand in the files of the
// field. The DOM keeps no attribute order, so the writer restores it from
// here; attributes not listed follow in name order.
QStringList attributeOrder(const QDomElement& element);

// The attributes of one programme row (a child of CONDITIONS), in order.
const QStringList& conditionRowAttributeOrder();

// The attributes of Conf: the daylight-saving settings.
const QStringList& confAttributeOrder();

} // namespace qv
