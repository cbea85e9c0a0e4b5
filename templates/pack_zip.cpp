// Build tool: zips a template package folder into the data folder. libzip writes plain local
// headers (no data descriptors), which the engine's strict reader of packages accepts, and
// every entry gets one fixed date, so an unchanged package zips to the same bytes.
//
//   qv_pack_zip OUTPUT.zip FOLDER FILE...     (FILEs relative to FOLDER, '/' separated)
#include <zip.h>

#include <cstdio>
#include <ctime>
#include <string>

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: qv_pack_zip OUTPUT.zip FOLDER FILE...\n");
    return 2;
  }
  std::remove(argv[1]);
  int code = 0;
  zip_t* archive = zip_open(argv[1], ZIP_CREATE | ZIP_TRUNCATE, &code);
  if (!archive) {
    std::fprintf(stderr, "qv_pack_zip: can't create %s (libzip error %d)\n", argv[1], code);
    return 1;
  }
  std::tm fixed{};
  fixed.tm_year = 2026 - 1900;
  fixed.tm_mday = 1;
  const time_t when = timegm(&fixed);
  for (int i = 3; i < argc; ++i) {
    const std::string path = std::string(argv[2]) + "/" + argv[i];
    zip_source_t* source = zip_source_file(archive, path.c_str(), 0, -1);
    const zip_int64_t index =
        source ? zip_file_add(archive, argv[i], source, ZIP_FL_ENC_UTF_8 | ZIP_FL_OVERWRITE) : -1;
    if (index < 0) {
      if (source) zip_source_free(source);
      std::fprintf(stderr, "qv_pack_zip: %s: %s\n", path.c_str(), zip_strerror(archive));
      zip_discard(archive);
      return 1;
    }
    zip_file_set_mtime(archive, static_cast<zip_uint64_t>(index), when, 0);
  }
  if (zip_close(archive) != 0) {
    std::fprintf(stderr, "qv_pack_zip: %s: %s\n", argv[1], zip_strerror(archive));
    zip_discard(archive);
    return 1;
  }
  return 0;
}
