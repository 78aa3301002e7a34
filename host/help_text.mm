#import "host/help_text.h"

#include <algorithm>
#include <cmath>

#import "host/controls.h"
#import "toolkit/text.h"

namespace fax::host {

using namespace toolkit;

namespace {

constexpr CGFloat kIndent = 20;
constexpr CGFloat kColumnGap = 14;
constexpr CGFloat kAboveHeading = 6;
constexpr CGFloat kMostBeforeLast = 0.5;  // of a table's width, for all columns but the last

// Of running text: that of the desktop.
CGFloat text_size() { return [NSFont systemFontSize]; }

CGFloat heading_size(int level) {
  static constexpr CGFloat kTimes[] = {1.6, 1.3, 1.15, 1.1, 1, 1};
  return std::round(text_size() * kTimes[std::clamp(level, 1, 6) - 1]);
}

NSFont *font(HelpRun const &run, CGFloat size, bool bold) {
  NSFont *made = run.code ? [NSFont userFixedPitchFontOfSize:size - 1]
                 : (bold || run.bold) ? [NSFont boldSystemFontOfSize:size]
                                      : [NSFont systemFontOfSize:size];
  if (run.italic) made = [[NSFontManager sharedFontManager] convertFont:made toHaveTrait:NSItalicFontMask];
  return made;
}

class Writer {
 public:
  Writer(HelpPage const &page, std::string const &path, CGFloat width)
      : page_(page), path_(path), width_(width), text_([[[NSMutableAttributedString alloc] init] autorelease]) {}

  HelpText write() {
    for (std::size_t at = 0; at < page_.blocks.size(); ++at) {
      bool const row = page_.blocks[at].kind == HelpBlock::Kind::row;
      bool const goes_on = row && at > 0 && page_.blocks[at - 1].kind == HelpBlock::Kind::row;
      if (row && !goes_on) measure_table(at);
      add(page_.blocks[at]);
      space(gap_below(at));
    }
    // An anchor at the very end leads to the last character.
    for (auto &anchor : anchors_) {
      if (anchor.second >= [text_ length]) anchor.second = [text_ length] ? [text_ length] - 1 : 0;
    }
    return {text_, anchors_, blocks_};
  }

 private:
  // Items of a list and rows of a table stand closer than paragraphs.
  CGFloat gap_below(std::size_t at) const {
    auto const kind = page_.blocks[at].kind;
    bool const goes_on = at + 1 < page_.blocks.size() && page_.blocks[at + 1].kind == kind;
    if (kind == HelpBlock::Kind::heading) return 4;
    if (goes_on && kind == HelpBlock::Kind::item) return 2;
    return goes_on && kind == HelpBlock::Kind::row && !stacked_ ? 4 : 7;
  }

  // A row of a table whose columns would be too narrow: one cell below the other, the headings left out.
  void stack(HelpBlock const &row) {
    blocks_.push_back([text_ length]);
    for (auto const &name : row.anchors) anchors_[name] = [text_ length];
    for (std::size_t at = 0; at < row.cells.size() && !row.header; ++at) {
      HelpBlock cell = row;
      cell.kind = HelpBlock::Kind::paragraph;
      cell.level = row.level + (at > 0 ? 1 : 0);
      cell.cells = {row.cells[at]};
      add(cell);
      blocks_.pop_back();
    }
  }

  void add(HelpBlock const &block) {
    if (stacked_ && block.kind == HelpBlock::Kind::row) return stack(block);
    if (block.kind == HelpBlock::Kind::heading && [text_ length] > 0) space(kAboveHeading);
    for (auto const &name : block.anchors) anchors_[name] = [text_ length];
    NSUInteger const start = [text_ length];
    blocks_.push_back(start);
    NSMutableParagraphStyle *style = [[[NSParagraphStyle defaultParagraphStyle] mutableCopy] autorelease];
    CGFloat size = text_size();
    bool bold = false;
    CGFloat const indent = kIndent * std::max(0, block.kind == HelpBlock::Kind::heading ? 0 : block.level);
    [style setFirstLineHeadIndent:indent];
    [style setHeadIndent:indent];
    switch (block.kind) {
      case HelpBlock::Kind::heading:
        size = heading_size(block.level);
        bold = true;
        break;
      case HelpBlock::Kind::item:
        [style setFirstLineHeadIndent:std::max<CGFloat>(0, indent - kIndent + 4)];
        [style setTabStops:[NSArray arrayWithObject:tab(indent)]];
        put(ns(block.marker + "\t"), attributes(HelpRun{}, text_size(), false));
        break;
      case HelpBlock::Kind::row: {
        NSMutableArray *tabs = [NSMutableArray array];
        for (std::size_t at = 1; at < columns_.size(); ++at) [tabs addObject:tab(indent + columns_[at])];
        [style setTabStops:tabs];
        [style setHeadIndent:indent + (columns_.empty() ? 0 : columns_.back())];
        break;
      }
      case HelpBlock::Kind::rule: {
        NSUInteger const dashes = static_cast<NSUInteger>(std::max<CGFloat>(1, width_ / [@"\u2500" sizeWithAttributes:
            attributes(HelpRun{}, text_size(), false)].width - 1));
        put([@"" stringByPaddingToLength:dashes withString:@"\u2500" startingAtIndex:0],
            attributes(HelpRun{}, text_size(), false));
        break;
      }
      default: break;
    }
    for (std::size_t at = 0; at < block.cells.size(); ++at) {
      if (at > 0) put(@"\t", attributes(HelpRun{}, size, false));
      for (HelpRun const &run : block.cells[at]) {
        if (run.image.empty() || !put_image(run)) put(ns(run.text), attributes(run, size, bold));
      }
    }
    put(@"\n", attributes(HelpRun{}, size, bold));
    [text_ addAttribute:NSParagraphStyleAttributeName value:style range:NSMakeRange(start, [text_ length] - start)];
  }

  // The toolkit's layout knows no space between paragraphs: a low empty line stands for it.
  void space(CGFloat height) { put(@"\n", attributes(HelpRun{}, height, false)); }

  static NSTextTab *tab(CGFloat at) {
    return [[[NSTextTab alloc] initWithType:NSLeftTabStopType location:at] autorelease];
  }

  // Columns as wide as their widest cell.
  void measure_table(std::size_t first) {
    std::vector<CGFloat> widths;
    for (std::size_t at = first; at < page_.blocks.size() && page_.blocks[at].kind == HelpBlock::Kind::row; ++at) {
      auto const &cells = page_.blocks[at].cells;
      widths.resize(std::max(widths.size(), cells.size()));
      for (std::size_t column = 0; column < cells.size(); ++column) {
        CGFloat cell = 0;
        for (HelpRun const &run : cells[column]) {
          cell += [ns(run.text) sizeWithAttributes:attributes(run, text_size(), false)].width;
        }
        widths[column] = std::max(widths[column], cell);
      }
    }
    columns_.clear();
    CGFloat x = 0;
    for (CGFloat width : widths) {
      columns_.push_back(x);
      x += std::ceil(width) + kColumnGap;
    }
    // The last column breaks its lines, the others cannot.
    stacked_ = !columns_.empty() && columns_.back() > width_ * kMostBeforeLast;
  }

  static NSDictionary *attributes(HelpRun const &run, CGFloat size, bool bold) {
    NSMutableDictionary *look = [NSMutableDictionary dictionary];
    [look setObject:font(run, size, bold) forKey:NSFontAttributeName];
    [look setObject:[NSColor textColor] forKey:NSForegroundColorAttributeName];
    if (!run.link.empty()) {
      [look setObject:ns(run.link) forKey:NSLinkAttributeName];
      [look setObject:[NSColor keyboardFocusIndicatorColor] forKey:NSForegroundColorAttributeName];
      [look setObject:[NSNumber numberWithInt:NSUnderlineStyleSingle] forKey:NSUnderlineStyleAttributeName];
    }
    return look;
  }

  void put(NSString *string, NSDictionary *look) {
    [text_ appendAttributedString:[[[NSAttributedString alloc] initWithString:string attributes:look] autorelease]];
  }

  bool put_image(HelpRun const &run) {
    auto const file = find_help_image(path_, run.image);
    if (!file) return false;
    NSImage *image = [[[NSImage alloc] initWithContentsOfFile:ns(*file)] autorelease];
    if (!image) return false;
    NSSize size = [image size];
    if (size.width > width_ && size.width > 0) {
      size = NSMakeSize(width_, std::floor(size.height * width_ / size.width));
      [image setScalesWhenResized:YES];
      [image setSize:size];
    }
    NSTextAttachment *attachment = [[[NSTextAttachment alloc] initWithFileWrapper:nil] autorelease];
    NSTextAttachmentCell *cell = [[[NSTextAttachmentCell alloc] initImageCell:image] autorelease];
    [attachment setAttachmentCell:cell];
    [text_ appendAttributedString:[NSAttributedString attributedStringWithAttachment:attachment]];
    return true;
  }

  HelpPage const &page_;
  std::string const &path_;
  CGFloat width_;
  NSMutableAttributedString *text_;
  std::map<std::string, NSUInteger> anchors_;
  std::vector<NSUInteger> blocks_;
  bool stacked_ = false;          // the current table is too wide for columns
  std::vector<CGFloat> columns_;  // where each column of the current table begins
};

}  // namespace

HelpText render_help(HelpPage const &page, std::string const &path, CGFloat width) {
  return Writer{page, path, width}.write();
}

}  // namespace fax::host
