// Quorvex.Password: salted slow password hashes for pages and for generation, over libsodium's
// Argon2id, since VBScript has nothing of the kind and a fast hash (or none) lets a stolen
// user table be read.
//
//   Hash(password)           a new hash text, "$argon2id$v=19$m=...,t=...,p=1$salt$hash",
//                            salted afresh each time, so two equal passwords hash differently
//   Verify(password, hash)   True when the password is the one the hash was made from; False
//                            for a wrong password and for a text that is no hash at all
//   NeedsRehash(hash)        True when the hash was made with other limits than Hash uses now,
//                            so that a page can store a fresh hash after a good login
//
// Passwords are taken as UTF-8. One that is empty or longer than 4,096 characters is refused
// by Hash (error 5) and never matches in Verify: nobody types such a password, and hashing
// megabytes on request would be an easy way to keep the server busy.
#include "support/password_object.h"

#include <sodium.h>

#include <string>

#include "automation/dispatch.h"

namespace qv {

namespace {

// Twice libsodium's "interactive" work over half its memory: on a loaded 2-core machine a
// hash takes about 60 ms and 32 MiB, which keeps a login quick and a worker pool of a few
// threads within memory, while each guess of an attacker with the table costs as much.
constexpr unsigned long long kOpsLimit = 3;
constexpr size_t kMemLimit = size_t{32} << 20;
constexpr size_t kMaxPasswordChars = 4096;

class PasswordObject : public DispatchObject<PasswordObject> {
 public:
  static const DispatchTable<PasswordObject>& Table() {
    static const auto table = DispatchTable<PasswordObject>(u"Password")
                                  .Method<&PasswordObject::Hash>(u"Hash")
                                  .Method<&PasswordObject::Verify>(u"Verify")
                                  .Method<&PasswordObject::NeedsRehash>(u"NeedsRehash");
    return table;
  }

  String Hash(StringView password) const {
    if (!Acceptable(password)) throw Error(kErrInvalidCall);
    const std::string utf8 = String::ToUtf8(password);
    char out[crypto_pwhash_STRBYTES];
    // Fails only when the memory cannot be had: the page sees it as out of memory.
    if (crypto_pwhash_str(out, utf8.data(), utf8.size(), kOpsLimit, kMemLimit) != 0)
      throw Error(kErrOutOfMemory);
    return String::FromUtf8(out);
  }

  bool Verify(StringView password, StringView hash) const {
    if (!Acceptable(password)) return false;
    const std::string stored = String::ToUtf8(hash);
    // libsodium reads the hash as a C string of at most STRBYTES: a longer text, or one with
    // a NUL inside, is no hash of ours.
    if (stored.empty() || stored.size() >= crypto_pwhash_STRBYTES ||
        stored.find('\0') != std::string::npos)
      return false;
    const std::string utf8 = String::ToUtf8(password);
    return crypto_pwhash_str_verify(stored.c_str(), utf8.data(), utf8.size()) == 0;
  }

  bool NeedsRehash(StringView hash) const {
    const std::string stored = String::ToUtf8(hash);
    if (stored.empty() || stored.size() >= crypto_pwhash_STRBYTES) return true;
    return crypto_pwhash_str_needs_rehash(stored.c_str(), kOpsLimit, kMemLimit) != 0;
  }

 private:
  static bool Acceptable(StringView password) {
    return password.size() > 0 && password.size() <= kMaxPasswordChars;
  }
};

}  // namespace

bool PasswordHashesAvailable() {
  // Makes libsodium pick its random source; later calls return at once.
  return sodium_init() >= 0;
}

Ref<Object> NewPasswordObject() {
  return Ref<Object>(MakeRef<PasswordObject>());
}

}  // namespace qv
