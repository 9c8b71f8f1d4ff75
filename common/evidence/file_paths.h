#pragma once

#include <QString>

#include <utility>

/// A name for a copy of file_path that is free in the folder: NAME, 1_NAME, 2_NAME, ... Creates the
/// folder. Empty when cancelled.
QString free_file_name(const QString &folder, const QString &file_path);
/// True when the folder (not its subfolders) has an entry of that name, both trimmed.
bool folder_has_entry(const QString &folder, const QString &name);

/// Ensures a leading "/"; for a home-directory source also moves the path into the home folder of
/// the given account.
QString complete_file_path(const QString &path, const QString &user_name,
                           const QString &source_type);
/// Ensures a leading "/"; for a home-directory source also removes everything up to and including
/// the first occurrence of the prefix.
QString relative_file_path(const QString &path, const QString &prefix, const QString &source_type);
/// The values of source_file and artifacts_relation_source_file: the relative path, and for a
/// home-directory source the path as given (else empty).
std::pair<QString, QString> source_file_columns(const QString &path, const QString &prefix,
                                                const QString &source_type);
/// System and domain user that a path below PREFIX belongs to: the second "/"-separated part of
/// what follows the prefix (of which only the length counts), with the domain user of the first
/// account of that name. Two empty texts when no accounts are known.
std::pair<QString, QString> account_of_path(const QString &path, const QString &prefix);

/// Copies a folder with all below it; failures are logged. Symbolic links are not followed.
void copy_folder(const QString &source, const QString &destination);
/// Removes a folder with all below it; a symbolic link is removed, never what it points at.
void remove_folder(const QString &folder);

/// The extension of a path's file name without its dot; empty without one. The leading dot of a
/// hidden file starts no extension.
QString file_suffix(const QString &path);
/// Of a file, or of all files below a folder (links not counted); empty when nothing exists there
/// and for a symbolic link. When cancelled, the size of the folder entry itself.
QString size_in_bytes(const QString &path);
