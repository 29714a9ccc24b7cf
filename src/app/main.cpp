#include "Appearance.h"
#include "MainWindow.h"
#include "PaletteIcons.h"
#include "platform/NativeText.h"

#include <QApplication>

#include <cstdio>
#include <string_view>

namespace {

constexpr const char* usage =
    "Usage: tallyroot [FOLDER | SCAN-FILE]\n"
    "Shows where the space on a disk went. Given a folder, scans it at once;\n"
    "given a scan file (tallyroot-scan --json, plain or gzip), shows that scan.\n\n"
    "Options:\n"
    "  -h, --help     Displays this help.\n"
    "  -v, --version  Displays the version.\n";

// Answered before any window is made, so that they need no display. -1 when
// the command line asks for neither.
int answerInformation(int argc, char* argv[])
{
    for (int index = 1; index < argc; ++index) {
        const std::string_view option = argv[index];
        if (option == "-v" || option == "--version")
            return std::printf("tallyroot %s\n", TALLYROOT_VERSION) < 0;
        if (option == "-h" || option == "--help")
            return std::fputs(usage, stdout) < 0;
    }
    return -1;
}

} // namespace

int main(int argc, char* argv[])
{
    if (const int status = answerInformation(argc, argv); status >= 0)
        return status;
    QApplication app(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
    app.installEventFilter(new PaletteIcons(&app));
    // Applied before the first window is made, so that it opens in its colours.
    Appearance appearance;
    appearance.apply(AppearanceSetting::load());
    appearance.followDesktopChanges();
    MainWindow window;
    QObject::connect(&window, &MainWindow::settingsSaved, &appearance,
                     [&appearance](const Settings& saved) { appearance.apply(saved.appearance); });
    window.show();
    // Qt has taken its own options out by now. The desktop hands over what
    // was dropped on the icon: the first folder is scanned, or the first
    // saved scan shown.
    for (const QString& argument : platform::arguments(argc, argv).mid(1)) {
        if (!argument.startsWith(QLatin1Char('-'))) {
            window.openPath(argument);
            break;
        }
    }
    return QApplication::exec();
}
