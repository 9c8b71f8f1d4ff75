#include "report/output_file.h"

#include "report/terminal.h"

using namespace Qt::StringLiterals;

namespace
{
constexpr size_t buffer_size = size_t{1} << 18;
}

bool write_all(QFileDevice &file, const char *bytes, size_t size)
{
    while (size > 0) {
        const qint64 written = file.write(bytes, static_cast<qint64>(size));
        if (written <= 0)
            return false;
        bytes += written;
        size -= static_cast<size_t>(written);
    }
    return true;
}

output_file::output_file(const QString &path) : file_(path), good_(file_.open(QIODevice::WriteOnly))
{
    buffer_.reserve(buffer_size + buffer_size / 2);
}

bool output_file::write(std::string_view bytes)
{
    buffer_ += bytes;
    return buffer_.size() < buffer_size || flush();
}

bool output_file::flush()
{
    good_ = good_ && write_all(file_, buffer_.data(), buffer_.size());
    buffer_.clear();
    return good_;
}

bool output_file::commit()
{
    if (terminal::interrupted())
        return false;
    if (flush() && file_.commit())
        return true;
    terminal::print_error(u"cannot write " + file_.fileName() + u": " + file_.errorString());
    return false;
}
