#include "tests/editor/EditorFixture.h"

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QUrl>
#include <QWheelEvent>
#include <gtest/gtest.h>

namespace ui::test {
namespace {

constexpr Qt::MouseButton kLeft = Qt::LeftButton;
constexpr Qt::MouseButton kMiddle = Qt::MiddleButton;

// A mouse whose places are byte offsets of the text.
class Mouse {
 public:
  explicit Mouse(Editor& editor) : editor_(editor) {}

  // A quarter into the character at the byte, so that the nearest caret place is before it.
  QPointF Over(size_t byte) {
    const QRectF at = editor_.layout.CaretRect({editor_.At(byte)});
    const QRectF next = editor_.layout.CaretRect({editor_.At(byte + 1)});
    return {at.center().x() + std::max(0.0, next.center().x() - at.center().x()) / 4, at.center().y()};
  }
  Mouse& Press(QPointF point, Qt::MouseButton button = kLeft, Qt::KeyboardModifiers modifiers = {}) {
    editor_.mouse.Press(Event(QEvent::MouseButtonPress, point, button, button, modifiers));
    return *this;
  }
  Mouse& Move(QPointF point, Qt::MouseButton held = kLeft) {
    editor_.mouse.Move(Event(QEvent::MouseMove, point, Qt::NoButton, held, {}));
    return *this;
  }
  Mouse& Release(QPointF point, Qt::MouseButton button = kLeft) {
    editor_.mouse.Release(Event(QEvent::MouseButtonRelease, point, button, Qt::NoButton, {}));
    return *this;
  }
  Mouse& Click(QPointF point, Qt::MouseButton button = kLeft, Qt::KeyboardModifiers modifiers = {}) {
    return Press(point, button, modifiers).Release(point, button);
  }
  Mouse& DoubleClick(QPointF point) {
    Click(point);
    editor_.mouse.DoubleClick(Event(QEvent::MouseButtonDblClick, point, kLeft, kLeft, {}));
    return *this;
  }

 private:
  struct Timed : QMouseEvent {
    Timed(QEvent::Type type, QPointF point, Qt::MouseButton button, Qt::MouseButtons held,
          Qt::KeyboardModifiers modifiers, quint64 time)
        : QMouseEvent(type, point, point, button, held, modifiers) {
      setTimestamp(time);
    }
  };
  Timed Event(QEvent::Type type, QPointF point, Qt::MouseButton button, Qt::MouseButtons held,
              Qt::KeyboardModifiers modifiers) {
    return Timed(type, point, button, held, modifiers, time_ += 10);
  }

  Editor& editor_;
  quint64 time_ = 1000;
};

TEST(Mouse, ClicksAndDragsSelect) {
  Editor editor("|one two\nthree four");
  Mouse mouse(editor);
  mouse.Click(mouse.Over(5));
  EXPECT_EQ(editor.Shown(), "one t|wo\nthree four");
  mouse.Click(mouse.Over(2), kLeft, Qt::ShiftModifier);
  EXPECT_EQ(editor.Shown(), "on|e t[wo\nthree four");
  mouse.Press(mouse.Over(1)).Move(mouse.Over(10));
  EXPECT_EQ(editor.Shown(), "o[ne two\nth|ree four");
  mouse.Move(mouse.Over(0)).Release(mouse.Over(0));
  EXPECT_EQ(editor.Shown(), "|o[ne two\nthree four");
  EXPECT_EQ(editor.host.data[QClipboard::Selection]->text(), "o");
}

TEST(Mouse, DoubleClickSelectsWordsAndGoesOnByWords) {
  Editor editor("|one two\nthree four");
  Mouse mouse(editor);
  mouse.DoubleClick(mouse.Over(5));
  EXPECT_EQ(editor.Shown(), "one [two|\nthree four");
  mouse.Move(mouse.Over(9));
  EXPECT_EQ(editor.Shown(), "one [two\nthree| four");
  mouse.Move(mouse.Over(1)).Release(mouse.Over(1));
  EXPECT_EQ(editor.Shown(), "|one two[\nthree four");
}

// The right half of a word's last character belongs to the word too.
TEST(Mouse, DoubleClickTakesTheWordUnderThePointer) {
  Editor editor("|one two");
  Mouse mouse(editor);
  const double e = editor.layout.CaretRect({text::Units(3)}).center().x();
  mouse.DoubleClick({e - 1, mouse.Over(0).y()});
  EXPECT_EQ(editor.Shown(), "[one| two");
}

TEST(Mouse, TripleClickSelectsTheParagraph) {
  Editor editor("|one two\nthree\nfour");
  Mouse mouse(editor);
  const QPointF point = mouse.Over(9);
  mouse.DoubleClick(point).Release(point).Press(point).Release(point);
  EXPECT_EQ(editor.Shown(), "one two\n[three\n|four");
  mouse.Click(point);
  EXPECT_EQ(editor.Shown(), "one two\nt|hree\nfour") << "a fourth click is a first one";
}

TEST(Mouse, TripleClickGoesOnByParagraphs) {
  Editor editor("|one\ntwo\nthree\nfour");
  Mouse mouse(editor);
  const QPointF point = mouse.Over(5);
  mouse.DoubleClick(point).Release(point).Press(point).Move(mouse.Over(9));
  EXPECT_EQ(editor.Shown(), "one\n[two\nthree\n|four");
  mouse.Move(mouse.Over(1)).Release(mouse.Over(1));
  EXPECT_EQ(editor.Shown(), "|one\ntwo\n[three\nfour");
}

// Only the user's selecting sets it: by the mouse, by keys, by Ctrl+A; losing the selection does not clear it.
TEST(Primary, IsWhatTheUserSelectedLast) {
  Editor editor("|one two");
  Mouse mouse(editor);
  const auto primary = [&] {
    const auto& data = editor.host.data[QClipboard::Selection];
    return data ? data->text().toStdString() : "-";
  };
  editor.controller.Select({text::Units(0), text::Units(3)});
  editor.controller.SelectAll();
  EXPECT_EQ(primary(), "-") << "the program's selections";
  mouse.DoubleClick(mouse.Over(5)).Release(mouse.Over(5));
  EXPECT_EQ(primary(), "two");
  editor.Press("Home Shift+Right");
  EXPECT_EQ(primary(), "o");
  editor.Press("Ctrl+A");
  EXPECT_EQ(primary(), "one two");
  editor.Press("Left 'x'");
  editor.controller.Select({text::Units(0), text::Units(1)});
  EXPECT_EQ(primary(), "one two");
}

TEST(Mouse, ADragIsArmedByAModifierAndStartsAfterADistance) {
  for (const auto modifier : {Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier}) {
    for (const auto button : {kLeft, kMiddle}) {
      Editor editor("one [two| three");
      Mouse mouse(editor);
      const QPointF on = mouse.Over(5);
      mouse.Press(on, button, modifier).Move(on + QPointF(1, 0), button);
      EXPECT_EQ(editor.host.drags, 0);
      mouse.Move(on + QPointF(QApplication::startDragDistance() + 1, 0), button);
      EXPECT_EQ(editor.host.drags, 1);
      mouse.Move(on + QPointF(50, 0), button).Release(on + QPointF(50, 0), button);
      EXPECT_EQ(editor.host.drags, 1);
      EXPECT_EQ(editor.Shown(), "one [two| three");
    }
  }
}

TEST(Mouse, AnArmedDragThatIsReleasedIsAClick) {
  const std::pair<Qt::KeyboardModifier, const char*> cases[] = {{Qt::ShiftModifier, "one [t|wo three"},
                                                                {Qt::ControlModifier, "one t|wo three"},
                                                                {Qt::AltModifier, "one t|wo three"}};
  for (const auto& [modifier, after] : cases) {
    Editor editor("one [two| three");
    Mouse mouse(editor);
    mouse.Press(mouse.Over(5), kLeft, modifier).Move(mouse.Over(5) + QPointF(1, 1));
    EXPECT_EQ(editor.Shown(), "one [two| three");
    mouse.Release(mouse.Over(5));
    EXPECT_EQ(editor.Shown(), after);
    EXPECT_EQ(editor.host.drags, 0);
    mouse.Move(mouse.Over(12));
    EXPECT_EQ(editor.Shown(), after) << "the click is over";
  }
}

TEST(Mouse, OffTheSelectionOrWithoutModifierNothingIsArmed) {
  Editor editor("one [two| three");
  Mouse mouse(editor);
  mouse.Press(mouse.Over(10), kLeft, Qt::ControlModifier).Move(mouse.Over(13)).Release(mouse.Over(13));
  EXPECT_EQ(editor.Shown(), "one two th[ree|");
  mouse.Press(mouse.Over(11)).Move(mouse.Over(2)).Release(mouse.Over(2));
  EXPECT_EQ(editor.host.drags, 0);
}

TEST(Mouse, MiddleClickPastesThePrimarySelectionAtThePointer) {
  Editor editor("one [two| three");
  Mouse mouse(editor);
  editor.controller.PublishPrimarySelection();
  mouse.Click(mouse.Over(0), kMiddle);
  EXPECT_EQ(editor.Shown(), "two|one two three");
  editor.controller.SetReadOnly(true);
  mouse.Click(mouse.Over(0), kMiddle);
  EXPECT_EQ(editor.Shown(), "two|one two three");
}

TEST(Mouse, ARightPressKeepsASelectionUnderIt) {
  Editor editor("one [two| three");
  Mouse mouse(editor);
  editor.mouse.PrepareContextMenu(mouse.Over(5));
  EXPECT_EQ(editor.Shown(), "one [two| three");
  editor.mouse.PrepareContextMenu(mouse.Over(10));
  EXPECT_EQ(editor.Shown(), "one two th|ree");
}

TEST(Mouse, HeldOutsideTheViewTheTextScrollsAndTheSelectionGrows) {
  std::string lines = "|";
  for (int i = 0; i < 200; ++i) lines += "line\n";
  Editor editor(lines, text::LineEnd::kLf, {300, 100});
  Mouse mouse(editor);
  mouse.Press({10, 10}).Move({10, 150});
  EXPECT_TRUE(editor.mouse.wantsAutoScroll());
  const auto before = editor.controller.caret().position;
  const auto anchor = editor.controller.selection().anchor;
  for (int i = 0; i < 10; ++i) editor.mouse.AutoScroll();
  EXPECT_GT(editor.controller.caret().position, before + text::Units(20));
  EXPECT_EQ(editor.controller.selection().anchor, anchor);
  mouse.Release({10, 150});
  EXPECT_FALSE(editor.mouse.wantsAutoScroll());
}

// --- Wheel

void Wheel(Editor& editor, QPoint pixels, QPoint angle, Qt::ScrollPhase phase, Qt::KeyboardModifiers modifiers = {}) {
  const QWheelEvent event({5, 5}, {5, 5}, pixels, angle, Qt::NoButton, modifiers, phase, false);
  editor.mouse.Wheel(event, 20);
}

TEST(Wheel, ScrollsByPixelsOrFractionsOfLines) {
  std::string lines = "|";
  for (int i = 0; i < 200; ++i) lines += "line\n";
  Editor editor(lines, text::LineEnd::kLf, {300, 100});
  const auto y = [&] { return editor.layout.CaretRect({text::Units(0)}).y(); };
  const double top = y();
  Wheel(editor, {0, -7}, {0, -120}, Qt::ScrollUpdate);
  EXPECT_NEAR(y(), top - 7, 0.01);
  Wheel(editor, {}, {0, -12}, Qt::NoScrollPhase);
  EXPECT_NEAR(y(), top - 7 - 0.1 * 20 * QApplication::wheelScrollLines(), 0.01);
  Wheel(editor, {}, {0, 1200}, Qt::NoScrollPhase);
  EXPECT_NEAR(y(), top, 0.01);
}

TEST(Wheel, ZoomsWithControl) {
  Editor editor("|a");
  Wheel(editor, {}, {0, 120}, Qt::NoScrollPhase, Qt::ControlModifier);
  EXPECT_NEAR(editor.host.zoom, 1.1, 1e-9);
  for (int i = 0; i < 8; ++i) Wheel(editor, {}, {0, -15}, Qt::NoScrollPhase, Qt::ControlModifier);
  EXPECT_NEAR(editor.host.zoom, 1, 1e-9);
}

TEST(Mouse, ADoubleClickOpensAnObjectAndControlEnterToo) {
  Editor editor("|");
  QMimeData data;
  data.setData(QStringLiteral("text/rtf"), "{\\rtf1 a{\\object\\objemb{\\*\\objclass Package}}b}");
  editor.controller.Insert(data, false);
  Mouse mouse(editor);
  mouse.DoubleClick(editor.layout.CaretRect({editor.At(1)}).center() + QPointF(6, 0));
  EXPECT_EQ(editor.host.opened, "1,");
  EXPECT_EQ(editor.controller.range().size(), text::Units(1));
  editor.Press("Ctrl+Return Right Ctrl+Return Right Ctrl+Return Home Ctrl+Return");
  EXPECT_EQ(editor.host.opened, "1,1,1,") << "selected, beside it, and not elsewhere";
}

TEST(Mouse, ARightPressMeansTheObjectUnderIt) {
  Editor editor("|");
  QMimeData data;
  const QByteArray object = "{\\object\\objemb\\objw600\\objh600{\\*\\objclass Package}}";
  data.setData(QStringLiteral("text/rtf"), "{\\rtf1 a" + object + object + "b}");
  editor.controller.Insert(data, false);
  const double left = editor.layout.CaretRect({text::Units(1)}).center().x();
  const QPointF middle = editor.layout.CaretRect({text::Units(2)}).center();
  for (const auto& [point, place] :
       {std::pair(QPointF(left + 4, middle.y()), 1), {middle - QPointF(4, 0), 1}, {middle + QPointF(4, 0), 2}}) {
    editor.controller.Select({text::Units(0), text::Units(0)});
    editor.mouse.PrepareContextMenu(point);
    EXPECT_EQ(editor.controller.range(), (text::Range{text::Units(place), text::Units(place + 1)})) << point.x();
  }
}

// --- Drops

TEST(Drop, IsTakenOnlyAsACopyOfTextFromElsewhere) {
  QMimeData text, files, nothing;
  text.setText(QStringLiteral("x"));
  files.setUrls({QUrl::fromLocalFile(QStringLiteral("/etc/hosts"))});
  nothing.setData(QStringLiteral("application/x-other"), "x");
  Editor editor("a|b");
  EXPECT_TRUE(editor.mouse.CanDrop(text, Qt::CopyAction | Qt::MoveAction, false));
  EXPECT_FALSE(editor.mouse.CanDrop(text, Qt::CopyAction, true)) << "its own drag";
  EXPECT_FALSE(editor.mouse.CanDrop(text, Qt::MoveAction, false));
  EXPECT_TRUE(editor.mouse.CanDrop(files, Qt::CopyAction, false));
  EXPECT_FALSE(editor.mouse.CanDrop(nothing, Qt::CopyAction, false));
  editor.controller.SetPlainOnly(true);
  EXPECT_FALSE(editor.mouse.CanDrop(files, Qt::CopyAction, false));
  QMimeData picture;
  picture.setImageData(QImage(2, 2, QImage::Format_RGB32));
  EXPECT_FALSE(editor.mouse.CanDrop(picture, Qt::CopyAction, false));
  editor.controller.SetReadOnly(true);
  EXPECT_FALSE(editor.mouse.CanDrop(text, Qt::CopyAction, false));
}

// "P" where a picture stands.
TEST(Drop, EverythingThatIsOfferedGoesInButTheSameThingOnce) {
  const QByteArray files = "file:///a%20b\r\nfile:///caf%E9\r\nhttps://example.org/\r\n", rtf = "{\\rtf1 r}";
  const QByteArray ours = "application/x-quillmark-drag";
  const QByteArray image = "application/x-qt-image", none;
  const struct {
    std::vector<std::pair<QByteArray, QByteArray>> offered;
    const char *rich, *plain;  // in a document that keeps formats, and in one that does not
    bool files;
  } kRows[] = {
      {{{"text/uri-list", files}}, "|", "|", true},
      {{{"text/uri-list", files}, {"text/plain", "/a b\r\ncaf\xE9\r\n"}}, "|", "|", true},
      {{{"text/uri-list", files}, {"text/plain", "file:///a%20b"}, {image, none}}, "|", "|", true},
      {{{"text/uri-list", files}, {"text/plain", "about them"}}, "about them|", "about them|", true},
      {{{"text/uri-list", files}, {"text/rtf", rtf}}, "r|", "r|", true},
      {{{"text/uri-list", files}, {"text/rtf", rtf}, {ours, "text"}}, "r|", "r|", false},
      {{{"text/uri-list", files}, {"text/rtf", rtf}, {ours, "file"}}, "|", "|", true},
      {{{"text/rtf", rtf}, {ours, "file"}}, "r|", "r|", false},
      {{{"text/uri-list", "https://x.org/"}, {"text/plain", "https://x.org/"}},
       "https://x.org/|",
       "https://x.org/|",
       false},
      {{{image, none}}, "P|", "P|", false},
      {{{image, none}, {"text/plain", "beside"}}, "besideP|", "besideP|", false},
      {{{image, none}, {"text/plain", "https://x.org/a.png"}}, "P|", "https://x.org/a.png|", false},
      {{{image, none}, {"text/rtf", rtf}, {"text/plain", "r"}}, "r|", "r|", false},
      {{{image, none}, {"text/html", "<img src=x>"}}, "P|", "P|", false},
      {{{image, none}, {"text/html", "<b>h</b>"}, {"text/plain", "h"}}, "h|", "h|", false},
  };
  for (const auto& row : kRows) {
    for (const bool keeps : {true, false}) {
      Editor editor("|");
      editor.controller.SavesFormatsWhen([keeps] { return keeps; });
      QMimeData data;
      for (const auto& [type, bytes] : row.offered) {
        type == image ? data.setImageData(QImage(2, 2, QImage::Format_RGB32))
                      : data.setData(QString::fromLatin1(type), bytes);
      }
      EXPECT_TRUE(editor.mouse.CanDrop(data, Qt::CopyAction, false));
      const auto paths = editor.mouse.Drop(data, {1, 1});
      std::string shown = editor.Shown();
      for (size_t at; (at = shown.find("\uFFFC")) != std::string::npos;) shown.replace(at, 3, "P");
      const auto number = &row - kRows;
      EXPECT_EQ(shown, keeps ? row.rich : row.plain) << number;
      EXPECT_EQ(paths, row.files ? std::vector<std::string>({"/a b", "/caf\xE9"}) : std::vector<std::string>())
          << number;
      EXPECT_EQ(editor.host.refusals, 0) << number;
    }
  }
}

TEST(Drop, GoesInWhereThePointerIs) {
  Editor editor("[one| two");
  Mouse mouse(editor);
  QMimeData data;
  data.setText(QStringLiteral("x"));
  editor.mouse.DragOver(mouse.Over(4));
  ASSERT_TRUE(editor.mouse.dropPlace());
  EXPECT_EQ(editor.Shown(), "[one| two") << "only shown";
  editor.mouse.Drop(data, mouse.Over(4));
  EXPECT_EQ(editor.Shown(), "one x|two");
  EXPECT_FALSE(editor.mouse.dropPlace());
}

}  // namespace
}  // namespace ui::test
