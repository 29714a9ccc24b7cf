#pragma once

#include "ResultView.h"

#include <QStringList>

class BiggestFilesModel;

// The 20 biggest files: name with its icon, size, bytes on disk beside it,
// last access and folder.
class BiggestFilesView : public ResultView {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(BiggestFilesView)

public:
    explicit BiggestFilesView(QWidget* parent = nullptr);
    ~BiggestFilesView() override;

    void showFiles(BiggestFilesModel* model);
    // Empty without a selection.
    [[nodiscard]] QString selectedFilePath() const;
    [[nodiscard]] QStringList selectedFilePaths() const;
    // Selects the file of this path alone; nothing when it is not listed.
    void selectPath(const QString& path);

signals:
    // The user chose a file, or none (an empty path).
    void fileChosen(const QString& path);

protected:
    void selectionChanged(const QItemSelection& selected,
                          const QItemSelection& deselected) override;

private:
    BiggestFilesModel* files = nullptr;
};
