#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>

#include <atomic>

/// The helper object that the controller owns and lends to its extractors: private copies of
/// evidence files, and the classification of file names by media type.
class plugin_helper_functions : public QWidget
{
    Q_OBJECT

public:
    explicit plugin_helper_functions(QWidget *parent = nullptr);

    /// Clears the cancel flag.
    void set_essentials();
    void set_cancel_extraction(bool cancel);
    /// The directory for private copies; created when the first copy is made.
    void set_adhoc_parent_path(const QString &path);

    /// Copies a database with its "-wal" and "-shm" companions under a free name and returns the
    /// copy's path; empty for a blank path. A failed copy is not reported: the path then names no
    /// file, and opening it fails. A companion that is there and could not be copied, or that is
    /// a link, is logged: the copy then lacks the latest rows.
    QString get_adhoc_path_for_database(const QString &source_path);
    /// The same for a file without companions.
    QString get_adhoc_path_for_regular_file(const QString &source_path);

    /// True when the name's extension (any case, surrounding blanks ignored) is of that media type.
    bool check_is_image_by_extn(const QString &file_name) const;
    bool check_is_video_by_extn(const QString &file_name) const;
    bool check_is_audio_by_extn(const QString &file_name) const;

private:
    void initialize_image_extension_list();
    void initialize_audio_extension_list();
    void initialize_video_extension_list();
    QString adhoc_copy(const QString &source_path, const QStringList &companion_suffixes,
                       const QString &signature) const;

    std::atomic<bool> cancelled_ = false;
    QStringList image_extensions_;
    QStringList audio_extensions_;
    QStringList video_extensions_;
    QString adhoc_parent_path_;
};
