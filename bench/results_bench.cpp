// What the user waits for on the results screen, offscreen: the time from
// startScanning() to scanFinish(), and from Back to backToMain().
//
//   tallyroot-results-bench FOLDER

#include "results/DiskUsageScanProgressForm.h"
#include "settings/ExclusionSettings.h"
#include "settings/FileTypeCatalogue.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QToolButton>

#include <cstdio>
#include <sys/resource.h>

namespace {

long peakKiB()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

} // namespace

int main(int argc, char* argv[])
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    FileTypeCatalogue::fillDefaults(FileTypeCatalogue::instance());
    ExclusionSettings::excludeList().clear();

    DiskUsageScanProgressForm form;
    form.resize(986, 513);
    form.show();
    QElapsedTimer timer;
    double scanSeconds = 0;
    double releaseSeconds = 0;
    QObject::connect(&form, &DiskUsageScanProgressForm::scanFinish, &form, [&] {
        scanSeconds = double(timer.nsecsElapsed()) / 1e9;
        // Let the results paint once, as a user would see them, then go back.
        QMetaObject::invokeMethod(
            &form,
            [&] {
                timer.restart();
                form.findChild<QToolButton*>("backButton")->click();
            },
            Qt::QueuedConnection);
    });
    QObject::connect(&form, &DiskUsageScanProgressForm::backToMain, &app, [&] {
        releaseSeconds = double(timer.nsecsElapsed()) / 1e9;
        QApplication::quit();
    });
    timer.start();
    form.startScanning(QString::fromLocal8Bit(argv[1]));
    QApplication::exec();
    std::printf("results %.3f s, release %.3f s, peak %ld MiB\n", scanSeconds, releaseSeconds,
                peakKiB() / 1024);
    return 0;
}
