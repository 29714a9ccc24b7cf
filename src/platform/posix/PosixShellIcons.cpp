#include "../ShellIcons.h"

#include <QFileIconProvider>

namespace platform {

QIcon folderIcon()
{
    return QFileIconProvider().icon(QFileIconProvider::Folder);
}

} // namespace platform
