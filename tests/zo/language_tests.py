"""The tool speaks the language that it is asked for; what programs read is the same in all."""
import harness
from harness import GOOD, TROUBLE, data


class Language(harness.ToolTest):
    def test_what_people_read(self):
        for words, exit_code, portuguese, spanish in (
                (["--help"], GOOD, "diz a versão e termina", "dice la versión y termina"),
                (["ls", "--help"], GOOD, "Várias condições", "Varias condiciones"),
                (["info", data("frame9.zo")], GOOD, "\n  tamanho    17473 bytes\n", "\n  tamaño     17473 bytes\n"),
                (["sql", data("frame9.zo")], GOOD, "todos os ponteiros", "todos los punteros"),
                (["schema", data("frame9.zo"), "--svg", "-"], GOOD, "refere-se a</text>", "se refiere a</text>"),
                (["info", "none.zo"], TROUBLE, "não existe esse arquivo", "no existe ese archivo"),
                (["dump", "--uid", "9999", data("frame9.zo")], TROUBLE, "não tem o objeto #9999", "no tiene el objeto #9999"),
                (["inof"], TROUBLE, "a linha de comando não foi entendida", "no se entendió la línea de comandos")):
            for option, text in ((["--language", "pt-BR"], portuguese), (["--language=es-mx"], spanish)):
                with self.subTest(words + option):
                    result = self.expect(exit_code, *words, *option, says=text if exit_code else "")
                    self.assertIn("" if exit_code else text, result.out)

    def test_what_programs_read(self):
        for words in (["schema", "--json"], ["dump", "--jsonl"]):
            with self.subTest(words):
                self.assertEqual(self.expect(GOOD, *words, data("every-kind.zo")).out,
                                 self.expect(GOOD, *words, data("every-kind.zo"), "--language", "pt-BR").out)

    def test_no_such_language(self):
        self.expect(TROUBLE, "--language", "fr-FR", "info", data("frame9.zo"), says='The language "fr-FR" is unknown. Use pt-BR')


if __name__ == "__main__":
    harness.main()
