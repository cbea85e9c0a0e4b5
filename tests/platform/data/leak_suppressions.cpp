// Leaks inside the libraries this layer drives, which no caller can free: mdbtools' SQL engine
// keeps parts of each parsed statement, and psqlODBC a few bytes per connection. Read by the
// sanitizers in sanitizer builds; an ordinary build never calls these.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libmdbsql.so\n"
         "leak:psqlodbcw.so\n"
         "leak:psqlodbca.so\n"
         "leak:libmaodbc.so\n";
}

// GLib is built without frame pointers: only the slow unwinder sees past g_malloc into the
// library that called it, which the suppressions above need.
extern "C" const char* __asan_default_options() {
  return "fast_unwind_on_malloc=0";
}
