// A host without Foundation: the library and all it needs come in by dlopen.
#include <CoreFoundation/CoreFoundation.h>

#include <gmock/gmock.h>

#include <dlfcn.h>

namespace {

std::string library_path;
void *library = nullptr;

template <typename Function>
Function *function(char const *name) {
  return reinterpret_cast<Function *>(dlsym(library, name));
}

TEST(ForeignHost, LibraryWorksOnceLoaded) {
  library = dlopen(library_path.c_str(), RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();

  auto const yes = static_cast<CFBooleanRef const *>(dlsym(library, "kCFBooleanTrue"));
  auto const no = static_cast<CFBooleanRef const *>(dlsym(library, "kCFBooleanFalse"));
  ASSERT_TRUE(yes != nullptr && no != nullptr);
  ASSERT_TRUE(*yes != nullptr && *no != nullptr);
  EXPECT_FALSE(function<decltype(CFEqual)>("CFEqual")(*yes, *no));
  EXPECT_EQ(function<decltype(CFGetTypeID)>("CFGetTypeID")(*yes),
            function<decltype(CFBooleanGetTypeID)>("CFBooleanGetTypeID")());

  // No autorelease pool is around, and none is asked for.
  testing::internal::CaptureStderr();
  auto const constant = function<decltype(__CFStringMakeConstantString)>("__CFStringMakeConstantString");
  CFStringRef const text = function<decltype(CFStringCreateWithFormat)>("CFStringCreateWithFormat")(
      nullptr, nullptr, constant("%@-%d"), constant("fax"), 7);
  char bytes[16] = "";
  EXPECT_TRUE(function<decltype(CFStringGetCString)>("CFStringGetCString")(text, bytes, sizeof bytes,
                                                                          kCFStringEncodingUTF8));
  function<decltype(CFRelease)>("CFRelease")(text);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_STREQ(bytes, "fax-7");

  // The classes are registered for good, so the library must be too.
  dlclose(library);
  EXPECT_EQ(constant("fax"), constant("fax"));
}

}  // namespace

int main(int argc, char **argv) {
  testing::InitGoogleTest(&argc, argv);
  if (argc > 1) library_path = argv[1];
  return RUN_ALL_TESTS();
}
