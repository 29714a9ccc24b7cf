// Makes the screens shown in the README from the real program: a sample tree
// is made in a temporary folder and scanned offscreen, and each screen is
// grabbed as a PNG. The settings go to a throw-away place.
//
//   tallyroot-screens OUTDIR [--dark] [--drive PATH] [--only NAME]...

#include "IsolatedSettings.h"
#include "app/Appearance.h"
#include "app/MainWindow.h"
#include "app/PaletteIcons.h"
#include "results/DiskUsageScanProgressForm.h"
#include "results/SearchPanel.h"
#include "results/TreemapView.h"
#include "scan/DiskUsageWorkerThread.h"
#include "scan/ScanFile.h"
#include "scan/ScanHistory.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>
#include <QTreeWidget>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <optional>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#endif

namespace {

struct Options {
    QString outDir;
    bool dark = false;
    QString drive;
    QStringList only;
};

// A file that takes its size on disk too, made without writing it.
bool makeFile(const QString& path, qint64 size)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
#ifdef Q_OS_UNIX
    if (size > 0 && posix_fallocate(file.handle(), 0, size) == 0)
        return true;
#endif
    return file.resize(size);
}

constexpr qint64 MB = 1'000'000;

// Someone's home folder, in brief.
bool makeSampleTree(const QString& root)
{
    struct Sample {
        const char* path;
        qint64 size;
    };
    const Sample samples[] = {
        {"Videos/holiday-2025.mp4", 1450 * MB},
        {"Videos/school-play.mkv", 610 * MB},
        {"Videos/clips/first-steps.mov", 180 * MB},
        {"Downloads/debian-12-amd64.iso", 660 * MB},
        {"Downloads/photo-editor-setup.exe", 95 * MB},
        {"Downloads/fonts.zip", 14 * MB},
        {"Backups/phone-2025-06.tar.gz", 540 * MB},
        {"Documents/thesis.pdf", 12 * MB},
        {"Documents/budget-2026.xlsx", 2 * MB},
        {"Documents/letters/landlord.docx", MB / 4},
        {"Documents/notes.txt", 12'000},
        {"Projects/site/index.html", 24'000},
        {"Projects/site/style.css", 9'000},
        {"Projects/site/logo.svg", 30'000},
        {"Projects/model/bracket.stl", 38 * MB},
        {"Projects/disk.img", 256 * MB},
    };
    for (const Sample& sample : samples) {
        if (!makeFile(root + QLatin1Char('/') + QLatin1String(sample.path), sample.size))
            return false;
    }
    for (int album = 1; album <= 4; ++album) {
        for (int track = 1; track <= 10; ++track) {
            const QString path = QStringLiteral("%1/Music/Album %2/%3 Track.flac")
                                     .arg(root)
                                     .arg(album)
                                     .arg(track, 2, 10, QLatin1Char('0'));
            if (!makeFile(path, (18 + (album * 7 + track * 3) % 14) * MB))
                return false;
        }
    }
    for (int photo = 1; photo <= 60; ++photo) {
        const QString path = QStringLiteral("%1/Pictures/%2/IMG_%3.jpg")
                                 .arg(root)
                                 .arg(photo <= 35 ? 2025 : 2026)
                                 .arg(photo, 4, 10, QLatin1Char('0'));
        if (!makeFile(path, (3 + photo % 5) * MB))
            return false;
    }
    return true;
}

// Runs the event loop until the condition holds, or for at most `limit` ms.
bool waitFor(const std::function<bool()>& condition, int limit = 60'000)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > limit)
            return false;
        QApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}

class Camera {
public:
    explicit Camera(Options options)
        : options(std::move(options))
    {}

    [[nodiscard]] bool wanted(const QString& name) const
    {
        return options.only.isEmpty() || options.only.contains(name);
    }

    bool take(QWidget* widget, const QString& name)
    {
        if (!wanted(name))
            return true;
        QApplication::processEvents();
        const QString file = path(name);
        const bool saved = widget->grab().save(file);
        std::printf("%s %s\n", saved ? "wrote" : "could not write", qPrintable(file));
        return saved;
    }

    [[nodiscard]] QString path(const QString& name) const
    {
        return QDir(options.outDir).filePath(name + QStringLiteral(".png"));
    }

    // The next modal dialog, once it is shown; then closes it.
    void takeNextModal(const QString& name)
    {
        QTimer::singleShot(300, [this, name] {
            if (QWidget* modal = QApplication::activeModalWidget()) {
                take(modal, name);
                modal->close();
            }
        });
    }

private:
    Options options;
};

// The results screen once `start` has shown what it asked for.
DiskUsageScanProgressForm* finished(MainWindow& window)
{
    auto* results = window.findChild<DiskUsageScanProgressForm*>();
    if (!results)
        return nullptr;
    bool finished = false;
    QObject::connect(results, &DiskUsageScanProgressForm::scanFinish, results,
                     [&finished] { finished = true; });
    if (!waitFor([&finished] { return finished; }, 600'000))
        return nullptr;
    waitFor([] { return false; }, 300); // the scanning panel goes
    return results;
}

DiskUsageScanProgressForm* scan(MainWindow& window, const QString& path)
{
    window.scanFolder(path);
    return finished(window);
}

template <typename T> T* child(QObject* parent, const char* name)
{
    return parent->findChild<T*>(QString::fromLatin1(name));
}

void goBack(MainWindow& window, DiskUsageScanProgressForm* results)
{
    child<QToolButton>(results, "backButton")->click();
    waitFor([&window] { return !window.findChild<DiskUsageScanProgressForm*>(); });
}

bool homeAndOptions(MainWindow& window, Camera& camera)
{
    auto* tabs = child<QTabWidget>(&window, "tabWidget");
    bool ok = camera.take(&window, QStringLiteral("home-screen"));
    if (camera.wanted(QStringLiteral("volume-details"))) {
        camera.takeNextModal(QStringLiteral("volume-details"));
        if (auto* info = child<QToolButton>(&window, "infoButton"))
            info->click();
    }
    tabs->setCurrentIndex(2);
    auto* optionTabs = child<QTabWidget>(tabs->widget(2), "tabWidget");
    ok = camera.take(&window, QStringLiteral("options-file-types")) && ok;
    optionTabs->setCurrentIndex(1);
    ok = camera.take(&window, QStringLiteral("options-exclude-folder")) && ok;
    optionTabs->setCurrentIndex(optionTabs->count() - 1);
    ok = camera.take(&window, QStringLiteral("options-scan-history")) && ok;
    optionTabs->setCurrentIndex(0);
    tabs->setCurrentIndex(0);
    return ok;
}

// The window with a menu open over it, as the user sees them together.
bool takeWithMenu(QWidget& window, QWidget* view, Camera& camera, const QString& name)
{
    if (!camera.wanted(name))
        return true;
    const QPoint at = view->rect().center() - QPoint(view->width() / 4, view->height() / 3);
    emit view->customContextMenuRequested(at);
    auto* menu = view->findChild<QMenu*>();
    if (!menu)
        return false;
    waitFor([menu] { return menu->isVisible(); }, 2000);
    QPixmap shot = window.grab();
    QPainter painter(&shot);
    painter.drawPixmap(window.mapFromGlobal(menu->pos()), menu->grab());
    painter.end();
    menu->close();
    const QString file = camera.path(name);
    const bool saved = shot.save(file);
    std::printf("%s %s\n", saved ? "wrote" : "could not write", qPrintable(file));
    return saved;
}

// What acting on the results looks like: the menu, the question before a
// removal (answered No), and a search.
bool actions(MainWindow& window, Camera& camera, DiskUsageScanProgressForm* results)
{
    auto* tree = child<QTreeView>(results, "treeView");
    const QModelIndex videos = tree->model()->index(0, 0, tree->model()->index(0, 0));
    tree->setCurrentIndex(videos);
    tree->setFocus();
    bool ok = takeWithMenu(window, tree, camera, QStringLiteral("results-context-menu"));
    if (camera.wanted(QStringLiteral("results-confirm-delete"))) {
        camera.takeNextModal(QStringLiteral("results-confirm-delete"));
        QTest::keyClick(tree, Qt::Key_Delete);
    }
    auto* tabs = child<QTabWidget>(results, "tabWidget");
    auto* search = child<SearchPanel>(results, "searchPanel");
    tabs->setCurrentWidget(child<QWidget>(results, "searchTab"));
    bool shown = false;
    QObject::connect(search, &SearchPanel::resultsShown, search, [&shown] { shown = true; });
    QTest::keyClicks(child<QLineEdit>(search, "searchEdit"), QStringLiteral("*202?*"));
    waitFor([&shown] { return shown; }, 10'000);
    ok = camera.take(&window, QStringLiteral("results-search")) && ok;
    tabs->setCurrentIndex(0);
    return ok;
}

bool results(MainWindow& window, Camera& camera, const QString& folder, Appearance& appearance)
{
    DiskUsageScanProgressForm* results = scan(window, folder);
    if (!results)
        return false;
    auto* tabs = child<QTabWidget>(results, "tabWidget");
    auto* tree = child<QTreeView>(results, "treeView");
    tree->expand(tree->model()->index(0, 0));
    bool ok = camera.take(&window, QStringLiteral("results-general"));
    if (camera.wanted(QStringLiteral("results-dark"))) {
        appearance.apply(AppearanceChoice::Dark);
        ok = camera.take(&window, QStringLiteral("results-dark")) && ok;
        appearance.apply(AppearanceChoice::Light);
    }
    tabs->setCurrentIndex(1);
    ok = camera.take(&window, QStringLiteral("results-biggest-files")) && ok;
    tabs->setCurrentIndex(3);
    auto* map = child<TreemapView>(results, "treemapView");
    waitFor([map] { return map->isRendered(); }, 10'000);
    ok = camera.take(&window, QStringLiteral("results-map")) && ok;
    tabs->setCurrentIndex(0);
    ok = actions(window, camera, results) && ok;
    goBack(window, results);
    return ok;
}

// The sample tree's scan, saved to a file and opened again, as a scan made
// elsewhere would be.
bool opened(MainWindow& window, Camera& camera, const QString& folder)
{
    if (!camera.wanted(QStringLiteral("results-opened")))
        return true;
    DiskUsageWorkerThread worker(nullptr, ScanRequest::of(folder, Settings::defaults()));
    worker.start();
    worker.wait();
    QTemporaryDir kept;
    const QString file = kept.filePath(QStringLiteral("samples.json.gz"));
    if (!ScanFile::write(file, worker.takeResult(), true))
        return false;
    window.openScanFile(file);
    DiskUsageScanProgressForm* results = finished(window);
    if (!results)
        return false;
    auto* tree = results->findChild<QTreeView*>(QStringLiteral("treeView"));
    tree->expand(tree->model()->index(0, 0));
    const bool ok = camera.take(&window, QStringLiteral("results-opened"));
    goBack(window, results);
    return ok;
}

// A month later: a new video, a new backup, the downloads tidied; the scan
// compared with the one kept before, as the tree and as the map.
bool compared(MainWindow& window, Camera& camera, const QString& folder)
{
    if (!camera.wanted(QStringLiteral("results-compare")) &&
        !camera.wanted(QStringLiteral("results-compare-map")))
        return true;
    // The scan of the sample tree is kept on a thread of its own.
    if (!waitFor([&folder] { return !ScanHistory().scansOf(folder).isEmpty(); }, 20'000))
        return false;
    waitFor([] { return false; }, 1100); // kept scans are named to the second
    const bool changed =
        makeFile(folder + QStringLiteral("/Videos/birthday-2026.mp4"), 820 * MB) &&
        makeFile(folder + QStringLiteral("/Backups/phone-2026-11.tar.gz"), 610 * MB) &&
        makeFile(folder + QStringLiteral("/Projects/model/gear.stl"), 44 * MB) &&
        QFile::remove(folder + QStringLiteral("/Downloads/debian-12-amd64.iso"));
    DiskUsageScanProgressForm* results = changed ? scan(window, folder) : nullptr;
    if (!results)
        return false;
    // The dialog lists the kept scan: it is chosen once the dialog shows.
    auto* chooser = new QTimer;
    QObject::connect(chooser, &QTimer::timeout, chooser, [chooser] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        auto* list = dialog ? dialog->findChild<QTreeWidget*>(QStringLiteral("scanList")) : nullptr;
        if (!list)
            return;
        chooser->deleteLater();
        chooser->stop();
        if (list->topLevelItemCount() > 0)
            list->setCurrentItem(list->topLevelItem(list->topLevelItemCount() - 1));
        if (auto* buttons = dialog->findChild<QDialogButtonBox*>())
            emit buttons->accepted();
    });
    chooser->start(50);
    child<QToolButton>(results, "compareButton")->click();
    auto* label = child<QLabel>(results, "compareLabel");
    waitFor([label] { return label->text().startsWith(QStringLiteral("Since")); }, 20'000);
    // Wide enough for the change column beside the others.
    const QSize size = window.size();
    window.resize(1280, size.height());
    auto* tree = child<QTreeView>(results, "treeView");
    tree->expand(tree->model()->index(0, 0));
    bool ok = camera.take(&window, QStringLiteral("results-compare"));
    auto* tabs = child<QTabWidget>(results, "tabWidget");
    tabs->setCurrentIndex(3);
    auto* map = child<TreemapView>(results, "treemapView");
    waitFor([map] { return map->isRendered(); }, 10'000);
    ok = camera.take(&window, QStringLiteral("results-compare-map")) && ok;
    window.resize(size);
    goBack(window, results);
    return ok;
}

bool drive(MainWindow& window, Camera& camera, const QString& root)
{
    if (!camera.wanted(QStringLiteral("results-drive")))
        return true;
    DiskUsageScanProgressForm* results = scan(window, root);
    if (!results)
        return false;
    const bool ok = camera.take(&window, QStringLiteral("results-drive"));
    goBack(window, results);
    return ok;
}

// The map of a real tree, /usr, coloured by type with its legend, larger.
bool typesMap(MainWindow& window, Camera& camera)
{
    if (!camera.wanted(QStringLiteral("results-map-types")) || !QFileInfo::exists("/usr"))
        return true;
    const QSize size = window.size();
    window.resize(1280, 800);
    DiskUsageScanProgressForm* results = scan(window, QStringLiteral("/usr"));
    if (!results)
        return false;
    child<QTabWidget>(results, "tabWidget")->setCurrentIndex(3);
    auto* map = child<TreemapView>(results, "treemapView");
    waitFor([map] { return map->isRendered() && map->rectOf(0) == QRectF(map->rect()); }, 20'000);
    const bool ok = camera.take(&window, QStringLiteral("results-map-types"));
    goBack(window, results);
    window.resize(size);
    return ok;
}

std::optional<Options> parse(const QStringList& arguments)
{
    Options options;
    for (qsizetype at = 1; at < arguments.size(); ++at) {
        const QString& argument = arguments.at(at);
        const bool hasValue = at + 1 < arguments.size();
        if (argument == QLatin1String("--dark"))
            options.dark = true;
        else if (argument == QLatin1String("--drive") && hasValue)
            options.drive = arguments.at(++at);
        else if (argument == QLatin1String("--only") && hasValue)
            options.only << arguments.at(++at);
        else if (options.outDir.isEmpty() && !argument.startsWith(QLatin1Char('-')))
            options.outDir = argument;
        else
            return std::nullopt;
    }
    if (options.outDir.isEmpty())
        return std::nullopt;
    return options;
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    const std::optional<Options> options = parse(QApplication::arguments());
    if (!options) {
        std::fputs("Usage: tallyroot-screens OUTDIR [--dark] [--drive PATH] [--only NAME]...\n",
                   stderr);
        return 2;
    }
    QApplication::setStyle(QStringLiteral("Fusion"));
    app.installEventFilter(new PaletteIcons(&app));
    // The program's own light or dark, whatever this desktop asks for.
    Appearance appearance([] { return platform::ColourScheme::Unknown; });
    appearance.apply(options->dark ? AppearanceChoice::Dark : AppearanceChoice::Light);
    QDir().mkpath(options->outDir);
    IsolatedSettings settings;
    QTemporaryDir home;
    const QString samples = home.filePath(QStringLiteral("Samples"));
    Camera camera(*options);

    MainWindow window;
    window.resize(1000, 620);
    window.show();
    bool ok = homeAndOptions(window, camera);
    const QStringList resultScreens = {
        "results-general", "results-biggest-files", "results-map",
        "results-dark",    "results-context-menu",  "results-confirm-delete",
        "results-search",  "results-compare",       "results-compare-map"};
    if (std::any_of(resultScreens.begin(), resultScreens.end(),
                    [&camera](const QString& name) { return camera.wanted(name); })) {
        ok = makeSampleTree(samples) && results(window, camera, samples, appearance) && ok;
        // Back home, the sample folder heads the recent ones, scanned just now.
        ok = camera.take(&window, QStringLiteral("home-recent")) && ok;
        ok = compared(window, camera, samples) && ok;
    }
    if (camera.wanted(QStringLiteral("results-opened")))
        ok = (QFileInfo::exists(samples) || makeSampleTree(samples)) &&
             opened(window, camera, samples) && ok;
    ok = typesMap(window, camera) && ok;
    if (!options->drive.isEmpty())
        ok = drive(window, camera, options->drive) && ok;
    window.close();
    return ok ? 0 : 1;
}
