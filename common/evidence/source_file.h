#pragma once

#include <QString>

/// Where the evidence lies.
struct evidence_source {
    QString source_root; ///< path of the mounted source, ends in "/"
    QString source_type; ///< for example macOS_Home_Directory
};

/// One found file of the evidence and the column values that all its rows share.
struct source_file {
    QString path; ///< where it lies on the examiner's machine
    QString system_user;
    QString domain_user;
    QString stored_path;   ///< value of source_file: inside the source, begins with "/"
    QString relation_path; ///< value of artifacts_relation_source_file

    source_file(const QString &path, const evidence_source &source);
};

/// The path without the source root and with a leading "/" (a blank path stays as it is).
QString path_inside_source(const QString &path, const evidence_source &source);
