#pragma once

#include "ResultView.h"

#include <optional>

class CategoryModel;

// The data files by category: name with its icon and the total of its files.
class DataFilesView : public ResultView {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DataFilesView)

public:
    explicit DataFilesView(QWidget* parent = nullptr);
    ~DataFilesView() override;

    // Shows the categories, the first one selected.
    void showCategories(CategoryModel* model);
    // The selected category's place in the catalogue; none for a disabled
    // one, which has no files to show.
    [[nodiscard]] std::optional<int> selectedCategory() const;
    [[nodiscard]] QString selectedName() const;
    // Selects the category of this name, wherever its total now ranks it.
    void selectNamed(const QString& name);
};
