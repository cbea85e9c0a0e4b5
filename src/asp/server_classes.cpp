// The ADODB objects and constants come from the ado library; Quorvex.Random is ours, and so
// are Quorvex.Password and Quorvex.Journal in their own files.
#include "asp/server_classes.h"

#include <sys/random.h>

#include <string>

#include "ado/classes.h"
#include "ado/connection.h"
#include "ado/constants.h"
#include "automation/convert.h"
#include "automation/dispatch.h"
#include "support/password_object.h"

namespace qv::asp {

namespace {

// Quorvex.Random: secrets for pages, such as the token a form carries against cross-site
// requests. VBScript's Rnd is a 24-bit generator that anyone can replay, so the text comes
// from the kernel's random source instead.
//   Token(length)  letters and digits, 1 to 256 of them
class RandomObject : public DispatchObject<RandomObject> {
 public:
  static const DispatchTable<RandomObject>& Table() {
    static const auto table =
        DispatchTable<RandomObject>(u"Random").Method(u"Token", [](RandomObject&, Args args) {
          CheckArgCount(args, 1, 1);
          const int32_t length = ToLong(args[0]);
          if (length < 1 || length > 256) throw Error(kErrInvalidCall);
          return Variant(Token(static_cast<size_t>(length)));
        });
    return table;
  }

 private:
  static String Token(size_t length) {
    static constexpr char16_t kAlphabet[] =
        u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    unsigned char bytes[256];
    size_t got = 0;
    while (got < length) {
      const ssize_t n = getrandom(bytes + got, length - got, 0);
      if (n > 0) got += static_cast<size_t>(n);
    }
    std::u16string out(length, u'a');
    for (size_t i = 0; i < length; ++i)
      out[i] = kAlphabet[bytes[i] % 62];  // 62 of 256 values: a slight lean that costs no secrecy
    return String(StringView(out));
  }
};

}  // namespace

void RegisterServerClasses(vbs::ClassRegistry& registry, data::ConnectionPool& pool) {
  ado::RegisterAdoClasses(registry);
  // Pages open their connection on every request; the pool keeps that from reopening it.
  const auto pooled = [&pool] {
    auto connection = MakeRef<ado::ConnectionObject>();
    connection->UsePool(&pool);
    return Ref<Object>(std::move(connection));
  };
  for (const char16_t* prog_id :
       {u"ADODB.Connection", u"ADODB.Connection.2.8", u"ADODB.Connection.6.0"})
    registry.Register(prog_id, pooled);
  registry.Register(u"Quorvex.Random", [] { return Ref<Object>(MakeRef<RandomObject>()); });
  if (PasswordHashesAvailable()) registry.Register(u"Quorvex.Password", NewPasswordObject);
  RegisterJournalClass(registry);
}

namespace {

// Members by index into the constant list. Each engine gets an object of its own, since an
// object's count is no atomic.
class AdoConstantMembers : public Object {
 public:
  String TypeName() const override { return u"AdoConstants"; }
  DispId GetIdOfName(StringView name) override {
    const auto all = ado::AdoConstants();
    for (size_t i = 0; i < all.size(); ++i) {
      if (EqualsNoCase(all[i].name, name)) return static_cast<DispId>(i + 1);
    }
    return kDispIdUnknown;
  }
  Variant Invoke(DispId id, uint16_t flags, Args args) override {
    const auto all = ado::AdoConstants();
    if (id < 1 || static_cast<size_t>(id) > all.size() || !args.empty() ||
        (flags & (kInvokeLet | kInvokeSet)))
      throw Error(kErrNotSupported);
    return Variant(all[static_cast<size_t>(id - 1)].value);
  }
};

}  // namespace

Ref<Object> AdoConstantsObject() {
  return MakeRef<AdoConstantMembers>();
}

}  // namespace qv::asp
