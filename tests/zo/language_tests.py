"""The tool speaks the language that it is asked for; what programs read is the same in all."""
import harness
from harness import GOOD, NEGATIVE, TROUBLE, data


class Language(harness.ToolTest):
    def test_what_people_read(self):
        for words, exit_code, portuguese, spanish in (
                (["--help"], GOOD, "diz a versão e termina", "dice la versión y termina"),
                (["ls", "--help"], GOOD, "Várias condições", "Varias condiciones"),
                (["info", data("frame9.zo")], GOOD, "\n  tamanho    17473 bytes\n", "\n  tamaño     17473 bytes\n"),
                (["sql", data("frame9.zo")], GOOD, "todos os ponteiros", "todos los punteros"),
                (["schema", data("frame9.zo"), "--svg", "-"], GOOD, "refere-se a</text>", "se refiere a</text>"),
                (["diff", "--schema", data("frame9.zo"), data("every-kind.zo")], NEGATIVE, "- classe Entity, abstrata (name string)",
                 "- clase Entity, abstracta (name string)"),
                (["info", "none.zo"], TROUBLE, "não existe esse arquivo", "no existe ese archivo"),
                (["dump", "--uid", "9999", data("frame9.zo")], TROUBLE, "não tem o objeto #9999", "no tiene el objeto #9999")):
            for option, text in ((["--language", "pt-BR"], portuguese), (["--language=es-mx"], spanish)):
                with self.subTest(words + option):
                    result = self.expect(exit_code, *words, *option, says=text if exit_code == TROUBLE else "")
                    self.assertIn("" if exit_code == TROUBLE else text, result.out)

    def test_slips_of_the_command_line(self):
        for words, *told in (
                ([], "A subcommand is required", "falta um comando", "falta un comando"),
                (["inof"], 'there is no command "inof"', 'não há o comando "inof"', 'no existe el comando "inof"'),
                (["info"], "FILE is required", "FILE é obrigatório", "FILE es obligatorio"),
                (["export", "x"], "Exactly 1 option from [--sqlite,--jsonl] is required", "é obrigatória exatamente 1 opção de [--sqlite,--jsonl]",
                 "se requiere exactamente 1 opción de [--sqlite,--jsonl]"),
                (["export", "x", "--sqlite", "a", "--jsonl", "b"], "Exactly 1 option from [--sqlite,--jsonl] is required and 2 were given",
                 "é obrigatória exatamente 1 opção de [--sqlite,--jsonl], e foram dadas 2",
                 "se requiere exactamente 1 opción de [--sqlite,--jsonl], y se dieron 2"),
                (["dump", "--follow", 2, "x"], "--follow requires --uid", "--follow exige --uid", "--follow requiere --uid"),
                (["dump", "--json", "--jsonl", "x"], "--json excludes --jsonl", "--json exclui --jsonl", "--json excluye --jsonl"),
                (["info", "x", "--none"], "The following argument was not expected: --none", "este argumento não era esperado: --none",
                 "no se esperaba este argumento: --none"),
                (["dump", "a", "b", "c"], "The following arguments were not expected: c b", "estes argumentos não eram esperados: c b",
                 "no se esperaban estos argumentos: c b"),
                (["ls", "x", "--where"], "--where: 1 required FIELD=VALUE missing", "--where: falta 1 FIELD=VALUE", "--where: falta 1 FIELD=VALUE"),
                (["dump", "x", "--uid", 1, "--uid", 2], "--uid: At Most 1 required but received 2", "--uid: no máximo 1, e foram dados 2",
                 "--uid: como máximo 1, y se dieron 2"),
                (["dump", "x", "--uid", "a = b"], "Could not convert: --uid = a = b", "este valor não serve: --uid = a = b",
                 "este valor no sirve: --uid = a = b"),
                (["diff", "--abs", -1, "a", "b"], "--abs: -1 is no number from 0 on", "--abs: -1 não é um número a partir de 0",
                 "--abs: -1 no es un número a partir de 0"),
                (["--color", "red not in x", "info", "x"], "--color: red not in x not in {auto,always,never}",
                 "--color: red não está em x not in {auto,always,never}", "--color: red no está en x not in {auto,always,never}")):
            for language, text in zip(("en-US", "pt-BR", "es-MX"), told):
                with self.subTest(words, language=language):
                    self.expect(TROUBLE, "--language", language, *words, says=f"zo: {text}; \"zo ")

    def test_what_programs_read(self):
        for words in (["schema", "--json"], ["dump", "--jsonl"]):
            with self.subTest(words):
                self.assertEqual(self.expect(GOOD, *words, data("every-kind.zo")).out,
                                 self.expect(GOOD, *words, data("every-kind.zo"), "--language", "pt-BR").out)

    def test_no_such_language(self):
        self.expect(TROUBLE, "--language", "fr-FR", "info", data("frame9.zo"), says='The language "fr-FR" is unknown. Use pt-BR')


if __name__ == "__main__":
    harness.main()
