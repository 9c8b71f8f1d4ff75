#include "report/output_file.h"

#include "report/terminal.h"

using namespace Qt::StringLiterals;

namespace
{
constexpr size_t buffer_size = size_t{1} << 18;
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
    const auto size = static_cast<qint64>(buffer_.size());
    good_ = good_ && file_.write(buffer_.data(), size) == size;
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
