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

private:
    BiggestFilesModel* files = nullptr;
};
