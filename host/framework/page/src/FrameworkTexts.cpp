// The framework's own texts: the buttons every page or pop-up shares, in
// each of the languages F2 cycles through (same order as LanguageCode).
#include "FrameworkState.h"

namespace framework {
namespace {

struct SharedButtonTexts {
  const CHAR16 *Next;
  const CHAR16 *Back;
  const CHAR16 *Refresh;
  const CHAR16 *Close;
};

constexpr SharedButtonTexts kTexts[kLanguageCount] = {
    {u"Next", u"Back", u"Refresh", u"Close"},  // en-US
    {u"Suivant", u"Précédent", u"Actualiser", u"Fermer"},  // fr-FR
    {u"Weiter", u"Zurück", u"Aktualisieren", u"Schließen"},  // de-DE
    {u"Siguiente", u"Atrás", u"Actualizar", u"Cerrar"},  // es-ES
    {u"Avanti", u"Indietro", u"Aggiorna", u"Chiudi"},  // it-IT
    {u"다음", u"이전", u"새로 고침", u"닫기"},  // ko-KR
    {u"下一步", u"上一步", u"刷新", u"关闭"},  // zh-Hans
    {u"下一步", u"上一步", u"重新整理", u"關閉"},  // zh-Hant
    {u"次へ", u"戻る", u"更新", u"閉じる"},  // ja-JP
    {u"Далее", u"Назад", u"Обновить", u"Закрыть"},  // ru-RU
    {u"Avançar", u"Voltar", u"Atualizar", u"Fechar"},  // pt-BR
};

}  // namespace

const CHAR16 *FrameworkText(EFI_STRING_ID Id) {
  const SharedButtonTexts &Texts =
      kTexts[gState.Language < kLanguageCount ? gState.Language : 0];
  switch (Id) {
    case HOST_STRING_NEXT:
      return Texts.Next;
    case HOST_STRING_BACK:
      return Texts.Back;
    case HOST_STRING_REFRESH:
      return Texts.Refresh;
    case HOST_STRING_CLOSE:
      return Texts.Close;
    default:
      return Id >= HOST_STRING_FIRST ? u"" : nullptr;
  }
}

}  // namespace framework
