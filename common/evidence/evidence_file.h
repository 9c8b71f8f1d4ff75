#pragma once

#include <QFile>
#include <QString>

/// A file of the evidence, opened for reading without leaving a trace: the access time stays as it
/// was where the system allows that, and only regular files open (a FIFO or device would block or
/// have effects). A read error (a bad sector) ends the reading like the end of the file does; it is
/// reported once, with the path, and what was read before it counts.
class evidence_file : public QFile
{
public:
    enum class links { followed, refused };

    explicit evidence_file(const QString &path) : QFile(path), path_(path) {}

    const QString &path() const { return path_; }

    /// False, with errorString() set, when there is no regular file to read.
    bool open_for_reading(links last_component = links::followed);
    /// For what must be in memory as a whole, or has lines that may be as long as the file: also
    /// false for a larger file. One full of holes takes no room in the evidence, and all the memory
    /// of the host.
    bool open_whole(qint64 largest = largest_bytes);
    /// Opens, reads and closes a JSON file, without parsing it. False also for one whose values
    /// would take more memory than JSON of its size needs, which is reported.
    bool read_json(QByteArray &text);
    /// The next line, of at most longest_line bytes: the rest of a longer one is passed over and
    /// cut_mark stands for it.
    QByteArray read_short_line();
    /// Bytes that the open file takes on its disk; its size where the system does not tell.
    qint64 stored_size() const;
    bool atEnd() const override { return ended_ || QFile::atEnd(); }

    // Far more than browsers write, in bytes. Values of a JSON document take several times its
    // size.
    static constexpr qint64 largest_bytes = 512LL << 20;
    static constexpr qint64 largest_json = 128LL << 20;
    static constexpr qint64 longest_line = 4LL << 20;

protected:
    qint64 readData(char *data, qint64 length) override;
    qint64 readLineData(char *data, qint64 length) override;

private:
    QString path_; ///< QFile forgets it when a descriptor is opened
    bool failed_ = false;
    bool ended_ = false; ///< what was read before the failure was taken, too
};

/// Copies a regular file of the evidence by the cheapest means the system offers (shared blocks,
/// copying inside the kernel, reading and writing). Holes stay holes. Refused when the file is
/// larger than the room that is left; on failure no partial copy is left. What cannot be read of it
/// is a hole in the copy, and reported.
bool copy_evidence_file(const QString &source, const QString &copy,
                        evidence_file::links last_component = evidence_file::links::followed);

/// True when the path, dots and links resolved, lies below the folder (or is it). False when either
/// does not exist.
bool is_inside_folder(const QString &path, const QString &folder);

/// False when there is nothing at the path, or nothing that a link there leads to.
bool leads_anywhere(const QString &path);
