// The framework's own texts: the buttons every page or pop-up shares, the
// screen's frame (key line, box buttons, help panel, the too-small notice)
// and the notice for a question that could not be shown, in each of the
// languages F2 cycles through (same order as LanguageCode). Each key line
// fits an 80-column screen beside the language code (71 cells; 69 beside
// zh-Hans and zh-Hant).
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

constexpr FrameTexts kFrame[kLanguageCount] = {
    {u" Tab:Move  Enter:Select  Space:Toggle  F1:Help  F2:Language  Esc:Exit",
     u"Yes", u"No", u"OK", u"Help", u" Esc:Close  \x2191\x2193:Scroll ",
     u"The window is too small: enlarge it to at least 80 x 25 characters."},
    {u" Tab:Aller  Entrée:Choix  Espace:Cocher  F1:Aide  F2:Langue  Échap:Fin",
     u"Oui", u"Non", u"OK", u"Aide", u" Échap:Fermer  \x2191\x2193:Défiler ",
     u"La fenêtre est trop petite : agrandissez-la à au moins 80 x 25 "
     u"caractères."},
    {u" Tab:Feld  Enter:Wählen  Leer:Ankreuzen  F1:Hilfe  F2:Sprache  Esc:Ende",
     u"Ja", u"Nein", u"OK", u"Hilfe", u" Esc:Schließen  \x2191\x2193:Blättern ",
     u"Das Fenster ist zu klein: bitte auf mindestens 80 x 25 Zeichen "
     u"vergrößern."},
    {u" Tab:Mover  Intro:Elegir  Espacio:Marca  F1:Ayuda  F2:Idioma  Esc:Salir",
     u"Sí", u"No", u"Aceptar", u"Ayuda", u" Esc:Cerrar  \x2191\x2193:Desplazar ",
     u"La ventana es demasiado pequeña: amplíela al menos a 80 x 25 "
     u"caracteres."},
    {u" Tab:Sposta  Invio:Scegli  Spazio:Segna  F1:Guida  F2:Lingua  Esc:Esci",
     u"Sì", u"No", u"OK", u"Guida", u" Esc:Chiudi  \x2191\x2193:Scorri ",
     u"La finestra è troppo piccola: ingrandirla ad almeno 80 x 25 caratteri."},
    {u" Tab:이동  Enter:선택  Space:전환  F1:도움말  F2:언어  Esc:종료",
     u"예", u"아니요", u"확인", u"도움말", u" Esc:닫기  \x2191\x2193:스크롤 ",
     u"창이 너무 작습니다. 80 x 25 문자 이상으로 늘려 주십시오."},
    {u" Tab:移动  Enter:选择  Space:切换  F1:帮助  F2:语言  Esc:退出",
     u"是", u"否", u"确定", u"帮助", u" Esc:关闭  \x2191\x2193:滚动 ",
     u"窗口太小：请至少放大到 80 x 25 个字符。"},
    {u" Tab:移動  Enter:選擇  Space:切換  F1:說明  F2:語言  Esc:結束",
     u"是", u"否", u"確定", u"說明", u" Esc:關閉  \x2191\x2193:捲動 ",
     u"視窗太小：請至少放大到 80 x 25 個字元。"},
    {u" Tab:移動  Enter:選択  Space:切替  F1:ヘルプ  F2:言語  Esc:終了",
     u"はい", u"いいえ", u"OK", u"ヘルプ", u" Esc:閉じる  \x2191\x2193:スクロール ",
     u"ウィンドウが小さすぎます。80 x 25 文字以上に広げてください。"},
    {u" Tab:Переход  Enter:Выбор  Пробел:Метка  F1:Справка  F2:Язык  Esc:Выход",
     u"Да", u"Нет", u"OK", u"Справка", u" Esc:Закрыть  \x2191\x2193:Прокрутка ",
     u"Окно слишком мало: увеличьте его хотя бы до 80 x 25 символов."},
    {u" Tab:Mover  Enter:Escolher  Espaço:Marca  F1:Ajuda  F2:Idioma  Esc:Sair",
     u"Sim", u"Não", u"OK", u"Ajuda", u" Esc:Fechar  \x2191\x2193:Rolar ",
     u"A janela é pequena demais: aumente-a para pelo menos 80 x 25 "
     u"caracteres."},
};

// Said in place of a question whose texts could not be copied; the answer
// word is that of the box's No button in the same language.
constexpr NoticeTexts kUnshownQuestion[kLanguageCount] = {
    {u"Error",
     u"A question could not be shown (out of memory) and was answered No."},
    {u"Erreur",
     u"Une question n'a pas pu être affichée (mémoire insuffisante) ; la "
     u"réponse Non a été donnée."},
    {u"Fehler",
     u"Eine Frage konnte nicht angezeigt werden (zu wenig Speicher) und "
     u"wurde mit Nein beantwortet."},
    {u"Error",
     u"No se pudo mostrar una pregunta (memoria insuficiente) y se respondió "
     u"No."},
    {u"Errore",
     u"Non è stato possibile mostrare una domanda (memoria insufficiente); "
     u"la risposta data è No."},
    {u"오류", u"메모리가 부족하여 질문을 표시할 수 없어 아니요로 응답했습니다."},
    {u"错误", u"内存不足，无法显示问题，已按“否”回答。"},
    {u"錯誤", u"記憶體不足，無法顯示問題，已按「否」回答。"},
    {u"エラー", u"メモリ不足のため質問を表示できず、「いいえ」と回答しました。"},
    {u"Ошибка",
     u"Не удалось показать вопрос (недостаточно памяти), принят ответ «Нет»."},
    {u"Erro",
     u"Não foi possível mostrar uma pergunta (memória insuficiente); a "
     u"resposta dada foi Não."},
};

}  // namespace

const FrameTexts &ScreenTexts() {
  return kFrame[gState.Language < kLanguageCount ? gState.Language : 0];
}

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
