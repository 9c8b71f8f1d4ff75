#pragma once

#include "tests/support/extraction_case.h"

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

class opera_macos;

/// What the fuzzer gives, without copying it.
inline QByteArray fuzz_bytes(const std::uint8_t *data, std::size_t size)
{
    return QByteArray::fromRawData(reinterpret_cast<const char *>(data),
                                   static_cast<qsizetype>(size));
}

/// A file of the profile that a fuzz target feeds, and who reads it.
struct chosen_file {
    QString name;
    QStringList tables;
    std::function<void(opera_macos &)> further_readers = {};
};

/// A source of the operating system with one account, "a", and a result database with all tables,
/// those that only a host creates included. It serves every run of a fuzz target.
class fuzz_case : public extraction_case
{
public:
    explicit fuzz_case(const QString &os_scheme);

    /// Lies in the account's profile folder.
    struct profile_file {
        QString name;
        QByteArray content;
    };

    /// Puts the files into the profile, finds them, and runs the driver for the tables and then the
    /// readers that no driver calls. Files and result rows are gone afterwards.
    void extract_from(const QList<profile_file> &files, const QStringList &tables,
                      const std::function<void(opera_macos &)> &further_readers = {});

    /// The same for one of the files: the input's first byte is its number, the rest its content.
    void extract_from_chosen(const std::vector<chosen_file> &files, const QByteArray &input);

private:
    QString profile_;
    QByteArray empty_results_; ///< the result database as it is before the first run
};
