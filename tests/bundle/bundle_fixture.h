// A host in miniature: it loads the bundle, answers its questions, and drives its windows.
#pragma once
#import <Cocoa/Cocoa.h>
#import <PrintCore/PDEPluginInterface.h>

#include <functional>
#include <objc/runtime.h>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform_fakes.h"

// What the host is told and answers.
@interface TestHost : NSObject <PDEPluginCallback> {
 @public
  ppd_file_t *ppd;
  PMPrintSettings settings;
  PMPrintSession session;
  BOOL hasSettings;
  BOOL hasSession;
  BOOL accepts;
  NSMutableArray *changes;  // "keyword=choice" of every request
}
@end

// Selectors of the bundle's classes that the tests send.
@interface NSObject (DirectFaxTest)
- (BOOL)initWithBundle:(NSBundle *)bundle;
- (id)initWithCallback:(id)callback andBundle:(NSBundle *)bundle;
- (id)initWithPPD:(ppd_file_t *)ppd andKeyowrd:(NSString *)keyword;
- (NSString *)curChoice;
- (NSString *)curValue;
- (void)setCurChoice:(ppd_choice_t *)choice;
- (void)setDefault;
- (void)setSummaryInfo:(NSMutableDictionary *)summary andOrder:(NSMutableArray *)order;
- (void)uiValueDidChange:(id)sender;
- (void)setDefaults:(id)sender;
- (void)updateUI;
- (void)setSenderName:(NSString *)name;
- (NSString *)senderName;
- (void)createDialog;
- (BOOL)isSending;
- (void)setBundle:(NSBundle *)bundle;
- (void)setPPD:(ppd_file_t *)ppd;
- (void)setIPAddress:(NSString *)address;
- (void)setPrintSettings:(PMPrintSettings)settings;
- (void)addAddressInfo:(id)sender;
- (void)editAddressInfo:(id)sender;
- (void)deleteAddressInfo:(id)sender;
- (void)startSending:(id)sender;
- (void)stopSending:(id)sender;
- (void)showHelpBook:(id)sender;
- (void)launchAddressBook:(id)sender;
- (BOOL)canAddAddress;
- (BOOL)canEditAddress;
- (BOOL)canDeleteAddress;
- (BOOL)canAddToAddressFile;
- (BOOL)isDelayedTime;
- (void)localizeControl:(NSView *)view;
- (void)localizeAllControls;
- (void)localizePPDPopup:(NSPopUpButton *)popup withKeyword:(char const *)keyword;
- (void)localizePPDControl:(NSView *)view withKeyword:(char const *)keyword;
- (NSString *)ppdKeywordForObject:(id)object;
- (void)setValue:(NSString *)value forPPDKeyword:(NSString *)keyword;
- (void)setEnabled:(BOOL)enabled forPPDKeyword:(NSString *)keyword;
- (NSString *)korlumLocalizedStringForKey:(NSString *)key value:(NSString *)value table:(NSString *)table;
@end

namespace test {

// Where the bundle is taken from; another place can be set before it is first used.
std::string &bundle_path();
// The bundle, loaded; a class by its short name.
NSBundle *bundle();
Class class_named(char const *short_name);

inline std::string utf8(NSString *text) { return text != nil ? [text UTF8String] : "(nil)"; }
inline NSString *ns(std::string const &text) { return [NSString stringWithUTF8String:text.c_str()]; }

// Puts body in the place of an instance method and gives the body that was there.
template <typename Body> Body replace(Class owner, SEL selector, Body body) {
  using Untyped = void (*)();
  IMP const old = method_setImplementation(class_getInstanceMethod(owner, selector),
                                           reinterpret_cast<IMP>(reinterpret_cast<Untyped>(body)));
  return reinterpret_cast<Body>(reinterpret_cast<Untyped>(old));
}

// A PPD that lives as long as the object: one group "QXFaxSettings" with the four options, and lines of the test's own.
class Ppd {
 public:
  explicit Ppd(std::string const &more = "", std::string const &group_text = "Fax Options");
  ~Ppd() { ppdClose(file_); }
  Ppd(Ppd const &) = delete;
  Ppd &operator=(Ppd const &) = delete;
  ppd_file_t *get() const { return file_; }

 private:
  ppd_file_t *file_;
};

// Every test of the bundle: a pool, a host with a PPD, and alerts that answer by themselves.
class BundleTest : public testing::Test {
 protected:
  BundleTest();
  ~BundleTest() override;

  // A panel as the factory makes it, its view loaded and restored.
  id panel();

  // Alerts shown since the start, as "message|informative|button|button".
  std::vector<std::string> &alerts();
  // The answers of the next alerts by button number, from 0; the first button when there are none left.
  void answer(std::vector<int> const &buttons);
  // Runs instead of each following modal session of a window, with that window shown.
  void in_modal_session(std::function<void()> const &script);

  Ppd ppd_;
  TestHost *host_;

 private:
  NSAutoreleasePool *pool_;
};

// Runs work inside the real modal loop as soon as it waits for events.
void when_modal(std::function<void()> const &work);

}  // namespace test
