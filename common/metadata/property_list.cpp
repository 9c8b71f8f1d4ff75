#include "common/metadata/property_list.h"

#ifdef OPERA_WITH_LIBPLIST

#include "common/metadata/printed_values.h"

#include <cstdlib>
#include <memory>
#include <plist/plist.h>

namespace
{

struct free_memory {
    void operator()(void *memory) const { std::free(memory); }
};

struct free_node {
    void operator()(void *node) const { plist_free(node); }
};
using owned_node = std::unique_ptr<void, free_node>;

QString text_of(plist_t node)
{
    // The function that copies the text ends the process when the text holds a NUL.
    uint64_t length = 0;
    const char *text = plist_get_string_ptr(node, &length);
    return QString::fromUtf8(text, static_cast<qsizetype>(length));
}

QByteArray bytes_of(plist_t node)
{
    uint64_t length = 0;
    const char *bytes = plist_get_data_ptr(node, &length);
    return bytes != nullptr ? QByteArray(bytes, static_cast<qsizetype>(length)) : QByteArray();
}

double real_of(plist_t node)
{
    double number = 0;
    plist_get_real_val(node, &number);
    return number;
}

qint64 whole_of(plist_t node)
{
    uint64_t number = 0;
    plist_get_uint_val(node, &number);
    return static_cast<qint64>(number); // numbers of eight bytes are signed
}

bool truth_of(plist_t node)
{
    uint8_t value = 0;
    plist_get_bool_val(node, &value);
    return value != 0;
}

/// Dates count from the first instant of 2001.
QString date_of(plist_t node)
{
    constexpr qint64 start_of_2001 = 978'307'200;
    int32_t seconds = 0;
    int32_t microseconds = 0;
    plist_get_date_val(node, &seconds, &microseconds);
    return printed_date(QDateTime::fromSecsSinceEpoch(start_of_2001 + seconds, Qt::UTC));
}

QString collection_of(plist_t node, int depth);

/// The value as an item of a list.
QString item_of(plist_t node, int depth)
{
    switch (plist_get_node_type(node)) {
    case PLIST_STRING:
        return printed_item(text_of(node));
    case PLIST_UINT:
        return printed_item(QString::number(whole_of(node)));
    case PLIST_REAL:
        return printed_item(QString::number(real_of(node), 'g', QLocale::FloatingPointShortest));
    case PLIST_BOOLEAN:
        return printed_item(QString::number(static_cast<int>(truth_of(node))));
    case PLIST_DATE:
        return printed_item(date_of(node));
    case PLIST_DATA:
        return printed_bytes(bytes_of(node));
    default:
        return collection_of(node, depth);
    }
}

QString list_of(plist_t node, int depth)
{
    // Reading items by their number would take quadratic time.
    plist_array_iter next = nullptr;
    plist_array_new_iter(node, &next);
    const std::unique_ptr<void, free_memory> owned_iterator(next);
    QStringList items;
    for (uint32_t left = plist_array_get_size(node); left > 0; --left) {
        plist_t item = nullptr;
        plist_array_next_item(node, next, &item);
        items.append(item_of(item, depth + 1));
    }
    return printed_list(items, depth);
}

QString dictionary_of(plist_t node, int depth)
{
    plist_dict_iter next = nullptr;
    plist_dict_new_iter(node, &next);
    const std::unique_ptr<void, free_memory> owned_iterator(next);
    QStringList keys;
    QStringList values;
    for (uint32_t left = plist_dict_get_size(node); left > 0; --left) {
        char *key = nullptr;
        plist_t value = nullptr;
        plist_dict_next_item(node, next, &key, &value);
        const std::unique_ptr<char, free_memory> owned_key(key);
        if (value == nullptr)
            break;
        keys.append(QString::fromUtf8(key));
        values.append(item_of(value, depth + 1));
    }
    return printed_dictionary(keys, values, depth);
}

QString collection_of(plist_t node, int depth)
{
    switch (plist_get_node_type(node)) {
    case PLIST_ARRAY:
        return list_of(node, depth);
    case PLIST_DICT:
        return dictionary_of(node, depth);
    default:
        return {};
    }
}

} // namespace

QString property_list_description(const QByteArray &bytes)
{
    if (!is_harmless_property_list(bytes))
        return {};
    plist_t root = nullptr;
    plist_from_bin(bytes.constData(), static_cast<uint32_t>(bytes.size()), &root);
    const owned_node owned(root);
    switch (plist_get_node_type(root)) {
    case PLIST_STRING:
        return printed_string(text_of(root));
    case PLIST_UINT:
        return printed_number(whole_of(root));
    case PLIST_REAL:
        return printed_number(real_of(root));
    case PLIST_BOOLEAN:
        return printed_boolean(truth_of(root));
    case PLIST_DATE:
        return date_of(root);
    case PLIST_DATA:
        return printed_bytes(bytes_of(root));
    default:
        return collection_of(root, 0);
    }
}

#else

QString property_list_description(const QByteArray & /*bytes*/)
{
    return {};
}

#endif
