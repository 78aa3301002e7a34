#import "host/help_text.h"

#include <algorithm>
#include <cmath>

#import "host/controls.h"
#import "toolkit/text.h"

namespace fax::host {

using namespace toolkit;

namespace {

constexpr CGFloat kText = 12;
constexpr CGFloat kIndent = 20;
constexpr CGFloat kColumnGap = 14;

CGFloat heading_size(int level) {
  static constexpr CGFloat kSizes[] = {20, 16, 14, 13, 12, 12};
  return kSizes[std::clamp(level, 1, 6) - 1];
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
    }
    // An anchor at the very end leads to the last character.
    for (auto &anchor : anchors_) {
      if (anchor.second >= [text_ length]) anchor.second = [text_ length] ? [text_ length] - 1 : 0;
    }
    return {text_, anchors_};
  }

 private:
  void add(HelpBlock const &block) {
    for (auto const &name : block.anchors) anchors_[name] = [text_ length];
    NSUInteger const start = [text_ length];
    NSMutableParagraphStyle *style = [[[NSParagraphStyle defaultParagraphStyle] mutableCopy] autorelease];
    CGFloat size = kText;
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
        put(ns(block.marker + "\t"), attributes(HelpRun{}, kText, false));
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
            attributes(HelpRun{}, kText, false)].width - 1));
        put([@"" stringByPaddingToLength:dashes withString:@"\u2500" startingAtIndex:0],
            attributes(HelpRun{}, kText, false));
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
    // The toolkit's layout knows no space between paragraphs: a low empty line stands for it.
    bool const close = block.kind == HelpBlock::Kind::item || block.kind == HelpBlock::Kind::row;
    put(@"\n", attributes(HelpRun{}, close ? 2 : 5, false));
    [text_ addAttribute:NSParagraphStyleAttributeName value:style range:NSMakeRange(start, [text_ length] - start)];
  }

  static NSTextTab *tab(CGFloat at) {
    return [[[NSTextTab alloc] initWithType:NSLeftTabStopType location:at] autorelease];
  }

  // Columns as wide as their widest cell, but no more than their share of what is left.
  void measure_table(std::size_t first) {
    std::vector<CGFloat> widths;
    for (std::size_t at = first; at < page_.blocks.size() && page_.blocks[at].kind == HelpBlock::Kind::row; ++at) {
      auto const &cells = page_.blocks[at].cells;
      widths.resize(std::max(widths.size(), cells.size()));
      for (std::size_t column = 0; column < cells.size(); ++column) {
        CGFloat cell = 0;
        for (HelpRun const &run : cells[column]) {
          cell += [ns(run.text) sizeWithAttributes:attributes(run, kText, false)].width;
        }
        widths[column] = std::max(widths[column], cell);
      }
    }
    columns_.clear();
    CGFloat x = 0;
    for (std::size_t column = 0; column < widths.size(); ++column) {
      columns_.push_back(x);
      CGFloat const share = (width_ - x) / static_cast<CGFloat>(widths.size() - column);
      x += std::min(std::ceil(widths[column]) + kColumnGap, std::max(share, width_ * 0.4));
    }
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
    HelpTarget const source = resolve_help_link(path_, run.image);
    if (source.path.empty()) return false;
    NSImage *image = [[[NSImage alloc] initWithContentsOfFile:ns(source.path)] autorelease];
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
  std::vector<CGFloat> columns_;  // where each column of the current table begins
};

}  // namespace

HelpText render_help(HelpPage const &page, std::string const &path, CGFloat width) {
  return Writer{page, path, width}.write();
}

}  // namespace fax::host
