// Lines of an encrypted debug log, as bytes and as base64; and that decrypting undoes
// encrypting.

#include "common/encryptor_string.h"
#include "fuzz/fuzz_case.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray input = fuzz_bytes(data, size);
    encryptor_string cipher;
    cipher.decryptToByteArray(input);
    cipher.decryptToString(QString::fromLatin1(input));
    if (!input.isEmpty()) {
        cipher.set_compression(static_cast<encryptor_string::compression>(data[0] % 3));
        cipher.set_protection(static_cast<encryptor_string::protection>(data[0] / 3 % 3));
    }
    if (cipher.decryptToByteArray(cipher.encryptToByteArray(input)) != input)
        qFatal("decrypting does not give back what was encrypted");
    return 0;
}
