#include "MainWindow.h"

#include "WindowGeometry.h"
#include "home/DiskUsageForm.h"
#include "ui_MainWindow.h"

#include <QCloseEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QStackedLayout>

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent)
    , ui(std::make_unique<Ui::MainWindow>())
{
    ui->setupUi(this);
    restoreGeometry();

    stackedLayout = new QStackedLayout;
    homeForm = new DiskUsageForm(settings, this);
    // A close refused while a release ran comes back once it has ended.
    connect(homeForm, &DiskUsageForm::closeApp, this, &QWidget::close);
    connect(homeForm, &DiskUsageForm::settingsSaved, this, [this](const Settings& saved) {
        settings = saved;
        emit settingsSaved(settings);
    });
    homeForm->show();
    stackedLayout->addWidget(homeForm);
    ui->centralwidget->setLayout(stackedLayout);
    setWindowTitle(tr("Tallyroot"));
    setAcceptDrops(true);
}

MainWindow::~MainWindow() = default;

void MainWindow::restoreGeometry()
{
    const auto g =
        WindowGeometry::restore(WindowGeometry::read(), platform::fullScreenClientSize());
    const int width = static_cast<int>(g.width);
    const int height = static_cast<int>(g.height);
    // A position that wrapped below zero is left to the window system to place.
    if (g.hasPlaceablePosition())
        setGeometry(static_cast<int>(g.x), static_cast<int>(g.y), width, height);
    else
        resize(width, height);
}

void MainWindow::scanFolder(const QString& path)
{
    homeForm->startScan(path);
}

void MainWindow::openScanFile(const QString& file)
{
    homeForm->openScan(file);
}

void MainWindow::openPath(const QString& path)
{
    if (QFileInfo(path).isFile())
        openScanFile(path);
    else
        scanFolder(path);
}

namespace {

// The first local file or folder among what is dragged; empty when none.
QString droppedPath(const QMimeData* data)
{
    for (const QUrl& url : data->urls()) {
        if (url.isLocalFile())
            return url.toLocalFile();
    }
    return {};
}

} // namespace

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (!homeForm->showsResults() && !droppedPath(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    const QString path = droppedPath(event->mimeData());
    if (homeForm->showsResults() || path.isEmpty())
        return;
    event->acceptProposedAction();
    openPath(path);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    WindowGeometry::fromRect(geometry()).write();
    // Options left unsaved are asked about, as on leaving their tab, once: not
    // again when the close waited for a release. Cancel, or a save that
    // failed, keeps the window open with them.
    if (!homeForm->isClosing() && !homeForm->offerToSaveOptions(true)) {
        event->ignore();
        return;
    }
    // A scan is told to stop and does not hold the window; a release in
    // progress does, until it has finished.
    if (homeForm->isScanning)
        homeForm->stopScan();
    if (homeForm->isClearingRam) {
        homeForm->stopScan();
        event->ignore();
    } else {
        event->accept();
    }
}
