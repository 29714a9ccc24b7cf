#pragma once

#include "platform/ColourScheme.h"
#include "settings/AppearanceSetting.h"

#include <QObject>
#include <QPalette>
#include <QString>

#include <functional>

// Light or dark colours for the whole application. Light is the look the
// application had when this was made (its style and palette); dark is the
// Fusion style with a dark palette, which every platform's Qt can draw.
class Appearance : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Appearance)

public:
    using Detector = std::function<platform::ColourScheme()>;

    // Notes the application's look as it is now as the light one. `detect`
    // tells what the desktop asks for.
    explicit Appearance(Detector detect = &platform::desktopColourScheme,
                        QObject* parent = nullptr);

    // Light or dark as chosen; FollowSystem asks the desktop (light when it
    // says nothing).
    void apply(AppearanceChoice choice);
    // Applies the choice again when the desktop's changes, while it follows it.
    void followDesktopChanges();
    [[nodiscard]] bool isDark() const { return dark; }

    [[nodiscard]] static QPalette darkPalette();

private:
    void onDesktopChanged();
    void setDark(bool wanted);

    Detector detect;
    AppearanceChoice choice = AppearanceChoice::FollowSystem;
    QString lightStyle;
    QPalette lightPalette;
    bool dark = false;
};
