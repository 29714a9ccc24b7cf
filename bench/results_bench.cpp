// What the user waits for on the results screen, offscreen: the time from
// startScanning() to scanFinish(), or with --open from openScanFile() of a
// saved scan to scanFinish(); with --map, from showing the Map tab at
// 1920x1080 to its first picture; and from Back to backToMain().
//
//   tallyroot-results-bench [--map [IMAGE]] FOLDER
//   tallyroot-results-bench --open SCAN-FILE
//
// IMAGE, when given, receives the map as drawn.

#include "results/DiskUsageScanProgressForm.h"
#include "results/TreemapView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTabWidget>
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
    QStringList arguments = QApplication::arguments().mid(1);
    const bool open = !arguments.isEmpty() && arguments.first() == "--open";
    if (open)
        arguments.removeFirst();
    const bool withMap = !arguments.isEmpty() && arguments.first() == "--map";
    if (withMap)
        arguments.removeFirst();
    const QString image = withMap && arguments.size() == 2 ? arguments.takeFirst() : QString();
    if (arguments.size() != 1) {
        std::fprintf(stderr, "usage: %s [--map [IMAGE]] FOLDER | --open SCAN-FILE\n", argv[0]);
        return 2;
    }
    DiskUsageScanProgressForm form;
    form.resize(986, 513);
    form.show();
    auto* map = form.findChild<TreemapView*>();
    QElapsedTimer timer;
    double scanSeconds = 0;
    double mapSeconds = 0;
    double releaseSeconds = 0;
    const auto goBack = [&] {
        timer.restart();
        form.findChild<QToolButton*>("backButton")->click();
    };
    QObject::connect(&form, &DiskUsageScanProgressForm::scanFinish, &form, [&] {
        scanSeconds = double(timer.nsecsElapsed()) / 1e9;
        // Let the results paint once, as a user would see them, then go on.
        QMetaObject::invokeMethod(
            &form,
            [&] {
                if (!withMap)
                    return goBack();
                timer.restart();
                form.resize(1920, 1080);
                form.findChild<QTabWidget*>("tabWidget")->setCurrentIndex(3);
            },
            Qt::QueuedConnection);
    });
    QObject::connect(map, &TreemapView::rendered, &form, [&] {
        mapSeconds = double(timer.nsecsElapsed()) / 1e9;
        if (!image.isEmpty())
            map->grab().save(image);
        QMetaObject::invokeMethod(&form, goBack, Qt::QueuedConnection);
    });
    QObject::connect(&form, &DiskUsageScanProgressForm::backToMain, &app, [&] {
        releaseSeconds = double(timer.nsecsElapsed()) / 1e9;
        QApplication::quit();
    });
    timer.start();
    if (open)
        form.openScanFile(arguments.first());
    else
        form.startScanning(ScanRequest::of(arguments.first(), Settings::defaults()));
    QApplication::exec();
    std::printf("results %.3f s, ", scanSeconds);
    if (withMap)
        std::printf("map %.3f s, ", mapSeconds);
    std::printf("release %.3f s, peak %ld MiB\n", releaseSeconds, peakKiB() / 1024);
    return 0;
}
