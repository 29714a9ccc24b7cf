#pragma once

#include <QIcon>
#include <QObject>
#include <QPalette>

class QAbstractButton;

// Our toolbar and button icons are drawn in dark ink for light windows. With a
// dark palette, the ink of every button's icon takes the palette's button
// text colour as the button is first shown, and again when the palette
// changes; back in a light palette the button gets its own icon back. The
// icons' colours stay.
class PaletteIcons : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PaletteIcons)

public:
    explicit PaletteIcons(QObject* parent = nullptr);

    [[nodiscard]] static bool isDark(const QPalette& palette);
    // The icon at the given size with its dark pixels in `ink`.
    [[nodiscard]] static QIcon inked(const QIcon& icon, QSize size, const QColor& ink);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    static void ink(QAbstractButton* button);
};
