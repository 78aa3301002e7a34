// gad: address books of the fax dialog, from a shell.

#include "gad/command_words.h"
#include "gad/commands.h"
#include "gad/failure.h"
#include "texts/texts.h"

#include <CLI/CLI.hpp>
#include <glib.h>

#include <csignal>
#include <exception>
#include <iostream>
#include <map>
#include <string>

namespace {

using namespace fax::tool;
using fax::tr;

CLI::App *add_command(CLI::App &program, char const *name, std::string const &description, std::string &book) {
  CLI::App *command = program.add_subcommand(name, description)->group(tr("Commands"));
  command->get_help_ptr()->group(tr("Options"));  // made before the program could say
  command->add_option("FILE", book, tr("the address book"))->required()->type_name("");
  return command;
}

template <typename Value>
void add_choice(CLI::App *command, char const *option, Value &value, std::map<std::string, Value> const &words,
                std::string const &description) {
  command
      ->add_option_function<std::string>(
          option, [&value, words](std::string const &word) { value = words.at(word); }, description)
      ->check(CLI::IsMember(words))
      ->type_name("FORMAT");
}

void add_format(CLI::App *command, ListFormat &format) {
  add_choice<ListFormat>(command, "--format", format,
                         {{"table", ListFormat::table}, {"tsv", ListFormat::tsv}, {"json", ListFormat::json}},
                         tr("how to print; otherwise a table on a terminal and tsv elsewhere"));
}

void add_delimiter(CLI::App *command, char &delimiter, std::string const &description) {
  command
      ->add_option_function<std::string>(
          "--delimiter",
          [&delimiter](std::string const &text) { delimiter = text == "tab" || text == "\\t" ? '\t' : text.front(); },
          description)
      ->check([](std::string const &text) {
        bool const good =
            text == "tab" || text == "\\t" ||
            (text.size() == 1 && text.front() > 0 && std::string("\"\r\n ").find(text) == std::string::npos);
        return good ? std::string() : tr("One ASCII character is needed, or tab.");
      })
      ->type_name("CHARACTER");
}

// The options of every command; the ones of the command that was given are filled in.
struct Program {
  CLI::App app{tr("Makes, shows and changes address books of the fax dialog."), "gad"};
  std::string new_book;
  ListChoices list;
  std::string add_book, remove_book;
  Contact contact;
  std::vector<std::string> removed;
  GroupChoices group;
  ImportChoices import;
  ExportChoices exported;
  int code = exit_success;

  Program() {
    app.formatter(help_format());
    app.option_defaults()->group(tr("Options"));
    app.set_version_flag("--version", "gad " GAD_VERSION, tr("show the version and end"));
    app.set_help_flag("-h,--help", tr("show this help and end"));
    app.require_subcommand(1);
    app.footer(tr("'gad COMMAND --help' tells all about a command, gad.1 all of it."));
    create();
    listing();
    adding();
    removing();
    grouping();
    importing();
    exporting();
  }

  void create() {
    CLI::App *command = add_command(app, "create", tr("make a new, empty address book"), new_book);
    command->callback([this] { code = create_book(new_book); });
  }

  void listing() {
    CLI::App *command = add_command(app, "list", tr("show entries: id, name, number, company, note, groups"), list.book);
    command->add_option("--search", list.search, tr("only names that hold this text, in any letter case"))
        ->type_name("TEXT");
    command->add_option("--group", list.group, tr("only members of this group"))->type_name("GROUP");
    add_format(command, list.format);
    command->callback([this] { code = list_entries(list); });
  }

  void adding() {
    CLI::App *command = add_command(app, "add", tr("add one entry and print its id"), add_book);
    command->add_option("NAME", contact.name, tr("who it is"))->required()->type_name("");
    command->add_option("NUMBER", contact.number, tr("the fax number"))->required()->type_name("");
    command->add_option("--company", contact.company, tr("the company it belongs to"))->type_name("TEXT");
    command->add_option("--note", contact.note, tr("anything else"))->type_name("TEXT");
    command
        ->add_option("--group", contact.groups, tr("a group to put it in, made when it is not there; may be given again"))
        ->type_name("GROUP")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    command->callback([this] { code = add_entry(add_book, contact); });
  }

  void removing() {
    CLI::App *command = add_command(app, "remove", tr("remove entries, all of them or none"), remove_book);
    command->add_option("ENTRY", removed, tr("ids or names"))->required()->type_name("");
    command->callback([this] { code = remove_entries(remove_book, removed); });
  }

  void grouping() {
    CLI::App *command = add_command(app, "group", tr("show groups, or the members of one; change a group"), group.book);
    CLI::Option *name = command->add_option("GROUP", group.name, tr("the group's name"))->type_name("");
    CLI::Option *create = command->add_flag("--create", group.create, tr("make the group"))->needs(name);
    command->add_option("--add", group.add, tr("ids or names of entries that join"))->type_name("ENTRY")->needs(name);
    command->add_option("--remove", group.remove, tr("ids or names of members that leave"))
        ->type_name("ENTRY")
        ->needs(name);
    command->add_option("--rename", group.new_name, tr("the group's new name"))->type_name("NAME")->needs(name);
    command->add_flag("--delete", group.erase, tr("remove the group; its members stay in the book"))
        ->needs(name)
        ->excludes(create);
    add_format(command, group.format);
    command->callback([this] { code = work_on_group(group); });
  }

  void importing() {
    CLI::App *command = add_command(app, "import", tr("add the contacts of a vCard or CSV file"), import.book);
    command->add_option("SOURCE", import.source, tr("the file; - for standard input"))->required()->type_name("");
    add_choice<ImportFormat>(command, "--from", import.format,
                             {{"vcard", ImportFormat::vcard}, {"csv", ImportFormat::csv}},
                             tr("what the file is, when that cannot be seen"));
    command
        ->add_option("--encoding", import.encoding,
                     tr("of the file: utf-8, utf-16le, latin1, windows-1252, shift-jis, ..."))
        ->type_name("NAME");
    add_delimiter(command, import.csv.delimiter, tr("between the cells of CSV; otherwise found out"));
    command
        ->add_option("--map", import.csv.columns,
                     tr("a column of CSV and what it holds, such as number=Fax; may be given again"))
        ->type_name("FIELD=COLUMN")
        ->allow_extra_args(false);
    command->add_flag("--no-header", import.csv.no_header, tr("the first row of CSV is a contact; needs --map"));
    command->add_flag("--fax-only", import.csv.fax_only, tr("skip contacts without a fax number"));
    command->add_option("--group", import.group, tr("put all of them into this group too"))->type_name("GROUP");
    command->add_flag("-n,--dry-run", import.dry_run, tr("do everything, report, and keep nothing"));
    command->add_flag("-q,--quiet", import.quiet, tr("no report"));
    command->add_flag("-v,--verbose", import.verbose, tr("all notes, not only the first 20"));
    command->callback([this] { code = import_list(import); });
  }

  void exporting() {
    CLI::App *command = add_command(app, "export", tr("write all entries and groups as vCard or CSV"), exported.book);
    command->add_option("TARGET", exported.target, tr("the file, by its ending .vcf or .csv; - for standard output"))
        ->type_name("");
    add_choice<ExportFormat>(command, "--to", exported.format,
                             {{"vcard", ExportFormat::vcard4},
                              {"vcard4", ExportFormat::vcard4},
                              {"vcard3", ExportFormat::vcard3},
                              {"csv", ExportFormat::csv}},
                             tr("what to write"));
    add_delimiter(command, exported.delimiter, tr("between the cells of CSV; otherwise a comma"));
    command->add_flag("--bom", exported.byte_order_mark, tr("begin CSV with a byte order mark, for Excel"));
    command->add_flag("-f,--force", exported.replace, tr("replace a file that is there"));
    command->add_flag("-q,--quiet", exported.quiet, tr("no notes"));
    command->callback([this] { code = export_book(exported); });
  }

  int run(int count, char **arguments) {
    std::string const first = count > 1 ? arguments[1] : "";
    auto const is_first = [&](CLI::App *command) { return command->get_name() == first; };
    if (!first.empty() && first.front() != '-' && app.get_subcommands(is_first).empty())
      throw Failure(tr("There is no command {0}. 'gad --help' shows them.", first), exit_usage);
    try {
      app.parse(count, arguments);
      return code;
    } catch (CLI::ParseError const &error) {
      if (error.get_exit_code() == 0) return app.exit(error);  // help, the version
      throw Failure(complaint(error.what()) + " " + tr("--help shows what can be said."), exit_usage);
    }
  }
};

// The vCard parser speaks of every oddity; what matters is in the report.
GLogWriterOutput no_output(GLogLevelFlags, GLogField const *, gsize, gpointer) { return G_LOG_WRITER_HANDLED; }

}  // namespace

int main(int count, char **arguments) {
  fax::speak(fax::catalogue_folders());
  g_log_set_writer_func(no_output, nullptr, nullptr);
  // A file that may not grow shows as a failed write.
  std::signal(SIGXFSZ, SIG_IGN);
  std::ios::sync_with_stdio(false);
  try {
    return Program().run(count, arguments);
  } catch (Failure const &failure) {
    std::cerr << "gad: " << failure.what() << '\n';
    return failure.code;
  } catch (std::bad_alloc const &) {
    std::cerr << "gad: " << tr("There is not enough memory.") << ' ' << tr("Nothing was changed.") << '\n';
  } catch (std::exception const &error) {
    std::cerr << "gad: " << error.what() << '\n';
  }
  return exit_failure;
}
