#include "gad/columns.h"

#include "gad/failure.h"
#include "gad/text.h"
#include "texts/texts.h"

#include <algorithm>
#include <charconv>
#include <unordered_map>
#include <utility>

namespace fax::tool {
namespace {

struct Names {
  Field field;
  std::string_view names;
};

// As they stand in the files, by language; compared by comparable().
constexpr Names known_names[] = {
    {Field::name,
     "Name|Full Name|Display Name|Displayname|File As|FN|Destination Name|Recipient|Recipient Name|Contact|"
     "Contact Name|User Name|Entry Name|Anzeigename|Vollständiger Name|Empfänger|Nom complet|Nom à afficher|"
     "Nom d'affichage|Afficher le nom|Destinataire|Nombre completo|Nombre para mostrar|Destinatario|"
     "Nome completo|Nome visualizzato|Nome da visualizzare|Nome de exibição|Weergavenaam|Volledige naam|"
     "Visningsnamn|Namn|Naam|Nazwa wyświetlana|表示名|氏名|名前|宛先名|宛名"},
    {Field::given,
     "First Name|Given Name|Firstname|Vorname|Prénom|Nombre|Nome|Voornaam|Primeiro nome|Förnamn|Imię|名"},
    {Field::middle,
     "Middle Name|Additional Name|Weitere Vornamen|Deuxième prénom|Segundo nombre|Secondo nome|Middelste naam|"
     "Segundo nome|ミドル ネーム"},
    {Field::family,
     "Last Name|Family Name|Surname|Lastname|Nachname|Nom|Nom de famille|Apellidos|Apellido|Cognome|"
     "Achternaam|Sobrenome|Apelido|Efternamn|Nazwisko|姓"},
    {Field::company,
     "Company|Company Name|Organization|Organisation|Organization Name|Organization 1 - Name|Firma|Société|"
     "Entreprise|Empresa|Compañía|Organización|Società|Azienda|Organizzazione|Bedrijf|Organisatie|Organização|"
     "Företag|Organizacja|会社名|会社|勤務先|所属"},
    {Field::note,
     "Notes|Note|Comment|Comments|Remarks|Memo|Notizen|Bemerkung|Bemerkungen|Notas|Notities|Observações|"
     "Anotações|Anteckningar|Uwagi|Notatki|メモ|備考"},
    {Field::fax,
     "Fax|Fax Number|Fax No|Fax No.|Faxnumber|Facsimile|Facsimile Number|Fax Phone|Primary Fax|Fax-Nummer|"
     "Faxnummer|Telefax|Télécopie|Télécopieur|Numéro de fax|Número de fax|Numero di fax|Número do fax|Faxnr|"
     "Numer faksu|Faks|FAX番号|ファックス|ファクス|ファクス番号"},
    {Field::fax_work,
     "Business Fax|Work Fax|Company Fax|Office Fax|Fax geschäftlich|Fax dienstlich|Fax (dienstl.)|"
     "Télécopie (bureau)|Fax bureau|Fax professionnel|Fax del trabajo|Fax trabajo|Fax (uff.)|Fax ufficio|"
     "Fax op werk|Fax werk|Fax comercial|Fax (arbete)|Faks służbowy|会社 FAX|勤務先 FAX"},
    {Field::fax_other,
     "Home Fax|Other Fax|Fax privat|Weiteres Fax|Télécopie (domicile)|Télécopie (autre)|Fax domicile|"
     "Fax particular|Otro fax|Fax (ab.)|Fax abitazione|Altro fax|Fax thuis|Andere fax|Fax residencial|"
     "Outro fax|Fax (hem)|Annan fax|Faks domowy|自宅 FAX|その他の FAX"},
    {Field::voice,
     "Phone|Phone Number|Telephone|Telephone Number|Number|Tel|Primary Phone|Business Phone|Work Phone|"
     "Office Phone|Destination|Destination Number|Dial Number|Telefon|Telefonnummer|Nummer|Rufnummer|"
     "Telefon geschäftlich|Tel. dienstlich|Téléphone|Numéro|Téléphone (bureau)|Tél. professionnel|Teléfono|"
     "Número|Teléfono del trabajo|Telefono|Numero|Ufficio|Telefono ufficio|Tel. ufficio|Telefoon|"
     "Telefoonnummer|Telefoon op werk|Telefone|Telefone comercial|Telefon (arbete)|Telefon służbowy|電話番号|"
     "電話|会社電話|勤務先の電話番号"},
    {Field::voice_other,
     "Business Phone 2|Company Main Phone|Home Phone|Home Phone 2|Mobile Phone|Mobile Number|Mobile|"
     "Cell Phone|Other Phone|Car Phone|Telefon privat|Telefon (privat)|Tel. privat|Mobiltelefon|"
     "Mobil-Tel.-Nr.|Handy|Weiteres Telefon|Téléphone (domicile)|Tél. personnel|Tél. mobile|Portable|"
     "Teléfono particular|Móvil|Teléfono móvil|Abitazione|Cellulare|Tel. abitazione|Telefoon thuis|"
     "Mobiele telefoon|Mobiel|Telefone residencial|Celular|Telemóvel|Telefon (hem)|Mobil|Telefon domowy|"
     "Telefon komórkowy|自宅電話|自宅の電話番号|携帯電話|携帯電話番号"},
    {Field::groups,
     "Categories|Category|Group|Groups|Group Membership|Group Name|Labels|Kategorien|Kategorie|Gruppe|Gruppen|"
     "Catégories|Catégorie|Groupe|Groupes|Categorías|Grupo|Grupos|Categorie|Categoria|Gruppo|Gruppi|"
     "Categorieën|Groep|Groepen|Categorias|Kategorier|Grupp|Grupper|Grupa|分類項目|分類|グループ|グループ名"}};

std::unordered_map<std::string, Field> make_lookup() {
  std::unordered_map<std::string, Field> lookup;
  for (auto [field, names] : known_names) {
    while (!names.empty()) {
      std::size_t const end = std::min(names.find('|'), names.size());
      lookup.emplace(comparable(names.substr(0, end)), field);
      names.remove_prefix(std::min(end + 1, names.size()));
    }
  }
  return lookup;
}

// "Phone 1 - Value", "Phone 2 - Label": pairs of columns, as many as the list needs.
std::optional<Field> numbered_phone(std::string_view name) {
  if (!name.starts_with("phone")) return std::nullopt;
  name.remove_prefix(5);
  std::size_t const digits = std::min(name.find_first_not_of("0123456789"), name.size());
  if (digits == 0) return std::nullopt;
  name.remove_prefix(digits);
  if (name == "value") return Field::labelled;
  if (name == "type" || name == "label") return Field::label;
  return std::nullopt;
}

std::optional<Field> chosen_field(std::string_view name) {
  static constexpr std::pair<std::string_view, Field> fields[] = {
      {"name", Field::name},       {"given", Field::given}, {"middle", Field::middle}, {"family", Field::family},
      {"company", Field::company}, {"note", Field::note},   {"number", Field::fax},    {"group", Field::groups}};
  for (auto const &[word, field] : fields)
    if (word == name) return field;
  return std::nullopt;
}

std::string list_of(std::vector<std::string> const &header) {
  std::string list;
  for (std::string const &column : header) list += (list.empty() ? "" : ", ") + in_quotes(column);
  return list;
}

std::size_t chosen_column(std::string const &choice, std::vector<std::string> const &header) {
  std::size_t number = 0;
  auto const [end, fault] = std::from_chars(choice.data(), choice.data() + choice.size(), number);
  if (fault == std::errc() && end == choice.data() + choice.size()) {
    if (number >= 1 && number <= header.size()) return number - 1;
  } else {
    for (std::size_t column = 0; column < header.size(); ++column)
      if (comparable(header[column]) == comparable(choice)) return column;
  }
  throw Failure(tr("--map: There is no column {0}. The columns are {1}.", in_quotes(choice), list_of(header)),
                exit_usage);
}

// The user's word counts for every kind of name or number, not beside what the header would have given.
void replace_field(Columns &columns, Field field, std::size_t column) {
  if (field == Field::fax)
    for (Field number :
         {Field::fax_work, Field::fax_other, Field::voice, Field::voice_other, Field::label, Field::labelled})
      columns.erase(number);
  if (field == Field::name)
    for (Field part : {Field::given, Field::middle, Field::family}) columns.erase(part);
  columns[field] = {column};
}

}  // namespace

std::optional<Field> known_column(std::string_view name) {
  static std::unordered_map<std::string, Field> const lookup = make_lookup();
  std::string const key = comparable(name);
  auto const found = lookup.find(key);
  return found != lookup.end() ? std::optional(found->second) : numbered_phone(key);
}

Field labelled_number(std::string_view label) {
  std::string const key = comparable(label);
  if (auto const known = known_column(key);
      known == Field::fax || known == Field::fax_work || known == Field::fax_other)
    return *known;
  if (key.find("fax") != std::string::npos)
    return key.find("work") != std::string::npos ? Field::fax_work : Field::fax_other;
  return key == "main" || key == "work" ? Field::voice : Field::voice_other;
}

Columns map_columns(std::vector<std::string> const &header) {
  Columns columns;
  for (std::size_t column = 0; column < header.size(); ++column)
    if (auto const field = known_column(header[column])) columns[*field].push_back(column);
  // "Nome" and "Nombre" are the whole name where no column holds the family's.
  if (!columns.contains(Field::family) && !columns.contains(Field::name) && columns.contains(Field::given))
    columns[Field::name] = columns.extract(Field::given).mapped();
  if (!columns.contains(Field::given) && !columns.contains(Field::name) && columns.contains(Field::family))
    columns[Field::name] = columns.extract(Field::family).mapped();
  return columns;
}

void override_columns(Columns &columns, std::vector<std::string> const &choices,
                      std::vector<std::string> const &header) {
  for (std::string const &choice : choices) {
    std::size_t const sign = choice.find('=');
    auto const field = sign == std::string::npos ? std::nullopt : chosen_field(choice.substr(0, sign));
    if (!field)
      throw Failure(tr("--map: {0} is not FIELD=COLUMN with one of the fields {1}.", in_quotes(choice),
                       "name, given, middle, family, number, company, note, group"),
                    exit_usage);
    replace_field(columns, *field, chosen_column(choice.substr(sign + 1), header));
  }
}

}  // namespace fax::tool
