#include "host/plugin_loader.h"

#include "host/terminal.h"
#include "plugin/opera.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLibrary>

using namespace Qt::StringLiterals;

namespace
{

QString usual_plugin_file()
{
    const QDir executables(QCoreApplication::applicationDirPath());
    const QString name = QStringLiteral(OPERA_LIBRARY_FILE_NAME);
    const QString beside = executables.filePath(name);
    return QFileInfo::exists(beside) ? beside
                                     : QDir::cleanPath(executables.filePath(u"../lib/" + name));
}

} // namespace

loaded_plugin load_plugin(const QString &file)
{
    const QString path = file.isEmpty() ? usual_plugin_file() : file;
    if (!QFileInfo(path).isFile())
        return {nullptr, u"there is no plug-in library " + path};

    QLibrary library(path);
    if (!library.load())
        return {nullptr, u"cannot load the plug-in: " + library.errorString()};
    const auto create_object = reinterpret_cast<opera *(*)()>(library.resolve("create_object"));
    if (create_object == nullptr)
        return {nullptr, path + u" is no plug-in: it has no create_object"};
    std::unique_ptr<opera> controller(create_object());
    if (!controller)
        return {nullptr, u"the plug-in " + path + u" made no controller"};
    return {std::move(controller), {}};
}
