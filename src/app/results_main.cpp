// tallyroot-results: the results screen on its own, for developers and the
// benchmark. Scans the folder given and shows the results; Back releases them
// and closes the window.

#include "results/DiskUsageScanProgressForm.h"

#include <QApplication>
#include <QDir>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
    const QStringList arguments = QApplication::arguments();
    const QString path = arguments.size() > 1 ? arguments.at(1) : QDir::homePath();

    DiskUsageScanProgressForm form;
    form.setWindowTitle(QStringLiteral("Tallyroot"));
    form.resize(986, 513);
    QObject::connect(&form, &DiskUsageScanProgressForm::backToMain, &app, &QApplication::quit);
    form.show();
    form.startScanning(ScanRequest::of(path, Settings::load()));
    return QApplication::exec();
}
