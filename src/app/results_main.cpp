// tallyroot-results: the results screen on its own, for developers and the
// benchmark. Scans the folder given and shows the results; Back releases them
// and closes the window.

#include "results/DiskUsageScanProgressForm.h"
#include "settings/ExclusionSettings.h"
#include "settings/FileTypeCatalogue.h"

#include <QApplication>
#include <QDir>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
    const QStringList arguments = QApplication::arguments();
    const QString path = arguments.size() > 1 ? arguments.at(1) : QDir::homePath();

    if (!FileTypeCatalogue::load(FileTypeCatalogue::instance()))
        FileTypeCatalogue::fillDefaults(FileTypeCatalogue::instance());
    ExclusionSettings::load();

    DiskUsageScanProgressForm form;
    form.setWindowTitle(QStringLiteral("Tallyroot"));
    form.resize(986, 513);
    QObject::connect(&form, &DiskUsageScanProgressForm::backToMain, &app, &QApplication::quit);
    form.show();
    form.startScanning(QDir::toNativeSeparators(path));
    return QApplication::exec();
}
