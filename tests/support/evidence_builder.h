#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QTemporaryDir>

/// Builds an evidence source in a temporary folder with plain SQLite and bytes; none of the code
/// under test takes part. Paths are relative to the source root.
class evidence_builder
{
public:
    evidence_builder();

    /// The source root, with a trailing "/".
    QString root() const { return root_; }
    QString path(const QString &relative) const { return root_ + relative; }

    void file(const QString &relative, const QByteArray &content) const;
    /// Runs the statements on the database, which is created when missing.
    void sqlite(const QString &relative, const QByteArray &sql) const;
    /// The same in WAL mode, leaving what the statements write in the "-wal" companion only.
    void sqlite_wal(const QString &relative, const QByteArray &sql) const;

    /// Digest, size and times (access time included) of every file, by relative path.
    QMap<QString, QString> fingerprints() const;

private:
    QTemporaryDir directory_;
    QString root_;
};

/// Where the profile of an account lies on a source.
QString macos_profile(const QString &account);
QString macos_cache(const QString &account);
QString winos_profile(const QString &account);
