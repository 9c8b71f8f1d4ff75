#pragma once

#include <QString>

#include <memory>

class opera;

/// A new controller of the plug-in library, or none and the reason. The library stays loaded.
struct loaded_plugin {
    std::unique_ptr<opera> controller;
    QString problem;
};

/// Loads the library of this path; an empty path means the one beside the executable or in the
/// folder "lib" next to the executable's.
loaded_plugin load_plugin(const QString &file);
