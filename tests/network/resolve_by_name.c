/* CopyResolvedIPAddress as another program's plain C finds it: by its name in the bundle.
 *
 *   resolve_by_name BUNDLE HOST ADDRESS [HOST ADDRESS...]     ADDRESS "-": the look-up has to fail
 */
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

typedef int resolve_function(const char *host, char *out, size_t size);

int main(int count, char **arguments) {
  if (count < 4 || count % 2 != 0) return 2;
  void *bundle = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
  if (bundle == NULL) {
    fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  resolve_function *resolve = NULL;
  *(void **)&resolve = dlsym(bundle, "CopyResolvedIPAddress");
  if (resolve == NULL) {
    fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  int failed = 0;
  for (int i = 2; i < count; i += 2) {
    char out[64] = "";
    int const code = resolve(arguments[i], out, sizeof out);
    char const *const got = code != 0 ? "-" : out;
    if (strcmp(got, arguments[i + 1]) == 0) continue;
    fprintf(stderr, "%s: %s, not %s (code %d)\n", arguments[i], got, arguments[i + 1], code);
    failed = 1;
  }
  return failed;
}
