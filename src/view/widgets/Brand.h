#pragma once

#include <QIcon>
#include <QPixmap>

namespace qv {

// The pictures of the tool, drawn rather than shipped so that they stay
// sharp at any size and need no image plug-in.

// The maker's mark and the product name on one strip, `height` pixels high.
QPixmap brandStrip(int height, qreal devicePixelRatio = 1.0);
// The start-up picture, with the program's version.
QPixmap splashPicture(qreal devicePixelRatio = 1.0);
// The window icon.
QIcon applicationIcon();

} // namespace qv
