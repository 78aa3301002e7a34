// -[NSBundle loadNibNamed:owner:topLevelObjects:], which the toolkit lacks: the nib is looked for in this bundle only,
// and the array alone keeps the objects.
#import <AppKit/AppKit.h>

@interface NSBundle (DirectFaxNib)
// NO, without an exception, when the bundle has no such .xib or .nib or it cannot be read. objects may be NULL; else it
// gets an autoreleased array, and whoever keeps that keeps the objects.
- (BOOL)loadNibNamed:(NSString *)name owner:(id)owner topLevelObjects:(NSArray **)objects;
@end

@implementation NSBundle (DirectFaxNib)

- (BOOL)loadNibNamed:(NSString *)name owner:(id)owner topLevelObjects:(NSArray **)objects {
  if ([name length] == 0) return NO;
  NSMutableArray *top = [NSMutableArray array];
  NSMutableDictionary *context = [NSMutableDictionary dictionaryWithObject:top forKey:NSNibTopLevelObjects];
  if (owner != nil) [context setObject:owner forKey:NSNibOwner];
  if (![self loadNibFile:name externalNameTable:context withZone:nullptr]) {
    // Of the language folders the toolkit searches those of the user's languages only.
    NSString *path = [self pathForResource:name ofType:@"xib" inDirectory:@"Base.lproj"];
    if (path == nil) path = [self pathForResource:name ofType:@"nib" inDirectory:@"Base.lproj"];
    if (path == nil || ![NSBundle loadNibFile:path externalNameTable:context withZone:nullptr]) return NO;
  }
  // The loader retains each once more for callers who give no array.
  [top makeObjectsPerformSelector:@selector(release)];
  if (objects != nullptr) *objects = [NSArray arrayWithArray:top];
  return YES;
}

@end
