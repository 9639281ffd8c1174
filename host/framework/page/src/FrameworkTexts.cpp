// The framework's own texts: the buttons every page or pop-up shares and the
// notice for a question that could not be shown, in each of the languages
// F2 cycles through (same order as LanguageCode).
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

// Said in place of a question whose texts could not be copied; the answer
// word is that of the box's No button.
constexpr NoticeTexts kUnshownQuestion[kLanguageCount] = {
    {u"Error",
     u"A question could not be shown (out of memory) and was answered No."},
    {u"Erreur",
     u"Une question n'a pas pu être affichée (mémoire insuffisante) ; la "
     u"réponse No a été donnée."},
    {u"Fehler",
     u"Eine Frage konnte nicht angezeigt werden (zu wenig Speicher) und "
     u"wurde mit No beantwortet."},
    {u"Error",
     u"No se pudo mostrar una pregunta (memoria insuficiente) y se respondió "
     u"No."},
    {u"Errore",
     u"Non è stato possibile mostrare una domanda (memoria insufficiente); "
     u"la risposta data è No."},
    {u"오류", u"메모리가 부족하여 질문을 표시할 수 없어 No로 응답했습니다."},
    {u"错误", u"内存不足，无法显示问题，已按 No 回答。"},
    {u"錯誤", u"記憶體不足，無法顯示問題，已按 No 回答。"},
    {u"エラー", u"メモリ不足のため質問を表示できず、No と回答しました。"},
    {u"Ошибка",
     u"Не удалось показать вопрос (недостаточно памяти), принят ответ No."},
    {u"Erro",
     u"Não foi possível mostrar uma pergunta (memória insuficiente); a "
     u"resposta dada foi No."},
};

}  // namespace

NoticeTexts UnshownQuestionNotice() {
  return kUnshownQuestion[gState.Language < kLanguageCount ? gState.Language
                                                           : 0];
}

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
