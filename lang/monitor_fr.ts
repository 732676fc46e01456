<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR">
<context>
    <name>AboutDialog</name>
    <message>
        <source>About Monitor</source>
        <translation>À propos de Monitor</translation>
    </message>
    <message>
        <source>Network processing monitor</source>
        <translation>Moniteur de traitement en réseau</translation>
    </message>
    <message>
        <source>Copyright © 2026 Korvane. All rights reserved.</source>
        <translation>Copyright © 2026 Korvane. Tous droits réservés.</translation>
    </message>
</context>
<context>
    <name>BatchDetailsDialog</name>
    <message>
        <source>Batch Details</source>
        <translation>Détails du lot</translation>
    </message>
    <message>
        <source>Project:</source>
        <translation>Projet&#xa0;:</translation>
    </message>
    <message>
        <source>Last error:</source>
        <translation>Dernière erreur&#xa0;:</translation>
    </message>
    <message>
        <source>Tasks</source>
        <translation>Tâches</translation>
    </message>
</context>
<context>
    <name>CurrentRowAnnouncer</name>
    <message>
        <source>%1: %2</source>
        <comment>a column header and the cell below it</comment>
        <translation>%1 : %2</translation>
    </message>
</context>
<context>
    <name>Errors</name>
    <message>
        <source>Network failure</source>
        <translation>Erreur réseau</translation>
    </message>
    <message>
        <source>Can&apos;t connect to server</source>
        <translation>Impossible de se connecter au serveur</translation>
    </message>
    <message>
        <source>Disconnected from server</source>
        <translation>Déconnecté du serveur</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Fichier</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Aide</translation>
    </message>
    <message>
        <source>E&amp;xit</source>
        <translation>&amp;Quitter</translation>
    </message>
    <message>
        <source>About Monitor...</source>
        <translation>À propos de Monitor...</translation>
    </message>
    <message>
        <source>Exit the application</source>
        <translation>Quitter l&apos;application</translation>
    </message>
    <message>
        <source>Display program information, version number and copyright</source>
        <translation>Afficher les informations sur le programme, le numéro de version et le copyright</translation>
    </message>
    <message>
        <source>Ready</source>
        <translation>Prêt</translation>
    </message>
</context>
<context>
    <name>Monitor</name>
    <message>
        <source>Add Photos</source>
        <translation>Ajouter des photos</translation>
    </message>
    <message>
        <source>Align Photos</source>
        <translation>Aligner les photos</translation>
    </message>
    <message>
        <source>Align Chunks</source>
        <translation>Aligner les blocs</translation>
    </message>
    <message>
        <source>Analyze Photos</source>
        <translation>Analyser les photos</translation>
    </message>
    <message>
        <source>Build Contours</source>
        <translation>Générer les courbes de niveau</translation>
    </message>
    <message>
        <source>Build DEM</source>
        <translation>Générer le MNE</translation>
    </message>
    <message>
        <source>Build Dense Cloud</source>
        <translation>Générer le nuage dense</translation>
    </message>
    <message>
        <source>Build Mesh</source>
        <translation>Générer le maillage</translation>
    </message>
    <message>
        <source>Build Orthomosaic</source>
        <translation>Générer l&apos;orthomosaïque</translation>
    </message>
    <message>
        <source>Build Texture</source>
        <translation>Générer la texture</translation>
    </message>
    <message>
        <source>Build Tiled Model</source>
        <translation>Générer le modèle tuilé</translation>
    </message>
    <message>
        <source>Build UV</source>
        <translation>Générer les coordonnées UV</translation>
    </message>
    <message>
        <source>Classify Ground Points</source>
        <translation>Classifier les points du sol</translation>
    </message>
    <message>
        <source>Close Holes</source>
        <translation>Boucher les trous</translation>
    </message>
    <message>
        <source>Compact Dense Cloud</source>
        <translation>Compacter le nuage dense</translation>
    </message>
    <message>
        <source>Decimate Mesh</source>
        <translation>Décimer le maillage</translation>
    </message>
    <message>
        <source>Detect Markers</source>
        <translation>Détecter les marqueurs</translation>
    </message>
    <message>
        <source>Duplicate Chunk</source>
        <translation>Dupliquer le bloc</translation>
    </message>
    <message>
        <source>Export Cameras</source>
        <translation>Exporter les caméras</translation>
    </message>
    <message>
        <source>Export Contours</source>
        <translation>Exporter les courbes de niveau</translation>
    </message>
    <message>
        <source>Export DEM</source>
        <translation>Exporter le MNE</translation>
    </message>
    <message>
        <source>Export Depth Map</source>
        <translation>Exporter la carte de profondeur</translation>
    </message>
    <message>
        <source>Export Masks</source>
        <translation>Exporter les masques</translation>
    </message>
    <message>
        <source>Export Matches</source>
        <translation>Exporter les correspondances</translation>
    </message>
    <message>
        <source>Export Model</source>
        <translation>Exporter le modèle</translation>
    </message>
    <message>
        <source>Export Orthomosaic</source>
        <translation>Exporter l&apos;orthomosaïque</translation>
    </message>
    <message>
        <source>Export Orthophotos</source>
        <translation>Exporter les orthophotos</translation>
    </message>
    <message>
        <source>Export Panorama</source>
        <translation>Exporter le panorama</translation>
    </message>
    <message>
        <source>Export Points</source>
        <translation>Exporter les points</translation>
    </message>
    <message>
        <source>Export Report</source>
        <translation>Exporter le rapport</translation>
    </message>
    <message>
        <source>Export Shapes</source>
        <translation>Exporter les formes</translation>
    </message>
    <message>
        <source>Export Texture</source>
        <translation>Exporter la texture</translation>
    </message>
    <message>
        <source>Export Tiled Model</source>
        <translation>Exporter le modèle tuilé</translation>
    </message>
    <message>
        <source>Import Cameras</source>
        <translation>Importer les caméras</translation>
    </message>
    <message>
        <source>Import Dem</source>
        <translation>Importer le MNE</translation>
    </message>
    <message>
        <source>Import Masks</source>
        <translation>Importer les masques</translation>
    </message>
    <message>
        <source>Import Model</source>
        <translation>Importer le modèle</translation>
    </message>
    <message>
        <source>Import Shapes</source>
        <translation>Importer les formes</translation>
    </message>
    <message>
        <source>Invert Masks</source>
        <translation>Inverser les masques</translation>
    </message>
    <message>
        <source>Load Project</source>
        <translation>Charger le projet</translation>
    </message>
    <message>
        <source>Match Photos</source>
        <translation>Apparier les photos</translation>
    </message>
    <message>
        <source>Merge Chunks</source>
        <translation>Fusionner les blocs</translation>
    </message>
    <message>
        <source>Optimize Alignment</source>
        <translation>Optimiser l&apos;alignement</translation>
    </message>
    <message>
        <source>Refine Markers</source>
        <translation>Affiner les marqueurs</translation>
    </message>
    <message>
        <source>Refine Points</source>
        <translation>Affiner les points</translation>
    </message>
    <message>
        <source>Reset Masks</source>
        <translation>Réinitialiser les masques</translation>
    </message>
    <message>
        <source>Reset Orthomosaic</source>
        <translation>Réinitialiser l&apos;orthomosaïque</translation>
    </message>
    <message>
        <source>Run Script</source>
        <translation>Exécuter un script</translation>
    </message>
    <message>
        <source>Save Project</source>
        <translation>Enregistrer le projet</translation>
    </message>
    <message>
        <source>Select Dense Points</source>
        <translation>Sélectionner les points denses</translation>
    </message>
    <message>
        <source>Smooth Model</source>
        <translation>Lisser le modèle</translation>
    </message>
    <message>
        <source>Track Markers</source>
        <translation>Suivre les marqueurs</translation>
    </message>
    <message>
        <source>Triangulate Points</source>
        <translation>Trianguler les points</translation>
    </message>
    <message>
        <source>Undistort Photos</source>
        <translation>Corriger la distorsion des photos</translation>
    </message>
    <message>
        <source>Update Orthomosaic</source>
        <translation>Mettre à jour l&apos;orthomosaïque</translation>
    </message>
    <message>
        <source>Highest</source>
        <translation>Très haute</translation>
    </message>
    <message>
        <source>High</source>
        <translation>Haute</translation>
    </message>
    <message>
        <source>Normal</source>
        <translation>Normale</translation>
    </message>
    <message>
        <source>Low</source>
        <translation>Basse</translation>
    </message>
    <message>
        <source>Lowest</source>
        <translation>Très basse</translation>
    </message>
    <message>
        <source>#</source>
        <translation>N°</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>Projet</translation>
    </message>
    <message>
        <source>Started</source>
        <translation>Démarré</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>État</translation>
    </message>
    <message>
        <source>Priority</source>
        <translation>Priorité</translation>
    </message>
    <message>
        <source>Current Task</source>
        <translation>Tâche en cours</translation>
    </message>
    <message>
        <source>Elapsed / Left</source>
        <translation>Écoulé / Restant</translation>
    </message>
    <message>
        <source>Failures</source>
        <translation>Échecs</translation>
    </message>
    <message>
        <source>Nodes</source>
        <translation>Nœuds</translation>
    </message>
    <message>
        <source>Host</source>
        <translation>Hôte</translation>
    </message>
    <message>
        <source>Batch #</source>
        <translation>Lot n°</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Progression</translation>
    </message>
    <message>
        <source>Last Error</source>
        <translation>Dernière erreur</translation>
    </message>
    <message>
        <source>Waiting...</source>
        <translation>En attente...</translation>
    </message>
    <message>
        <source>Host name:</source>
        <translation>Nom d&apos;hôte&#xa0;:</translation>
    </message>
    <message>
        <source>Port:</source>
        <translation>Port&#xa0;:</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Connexion</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>Déconnexion</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Suspendre</translation>
    </message>
    <message>
        <source>Resume</source>
        <translation>Reprendre</translation>
    </message>
    <message>
        <source>Abort</source>
        <translation>Abandonner</translation>
    </message>
    <message>
        <source>Set Priority</source>
        <translation>Définir la priorité</translation>
    </message>
    <message>
        <source>Details...</source>
        <translation>Détails...</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Arrêter</translation>
    </message>
    <message>
        <source>Batches</source>
        <translation>Lots</translation>
    </message>
</context>
<context>
    <name>TaskStatusWidget</name>
    <message>
        <source>%1/%2 completed</source>
        <translation>terminés&#xa0;: %1/%2</translation>
    </message>
    <message>
        <source>%1/%2 nodes active</source>
        <translation>nœuds actifs&#xa0;: %1/%2</translation>
    </message>
    <message>
        <source>%1 failures</source>
        <translation>échecs&#xa0;: %1</translation>
    </message>
    <message>
        <source>Waiting...</source>
        <translation>En attente...</translation>
    </message>
    <message>
        <source>elapsed</source>
        <translation>écoulé</translation>
    </message>
    <message>
        <source>left</source>
        <translation>restant</translation>
    </message>
    <message>
        <source>%1%</source>
        <comment>progress in percent</comment>
        <translation>%1 %</translation>
    </message>
</context>
<context>
    <name>Web</name>
    <message>
        <source>Views</source>
        <translation>Vues</translation>
    </message>
    <message>
        <source>Farm summary</source>
        <translation>Résumé de la ferme</translation>
    </message>
    <message>
        <source>data as of %1</source>
        <translation>données de %1</translation>
    </message>
    <message>
        <source>Disconnected from server since %1 — showing the last known state</source>
        <translation>Déconnecté du serveur depuis %1 — affichage du dernier état connu</translation>
    </message>
    <message>
        <source>Connected to the server again</source>
        <translation>De nouveau connecté au serveur</translation>
    </message>
    <message>
        <source>Signed in as %1 (%2)</source>
        <translation>Connecté en tant que %1 (%2)</translation>
    </message>
    <message>
        <source>No sign-in (%1)</source>
        <translation>Sans identification (%1)</translation>
    </message>
    <message>
        <source>viewer</source>
        <translation>observateur</translation>
    </message>
    <message>
        <source>operator</source>
        <translation>opérateur</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Langue</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Filtre</translation>
    </message>
    <message>
        <source>All statuses</source>
        <translation>Tous les états</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Rechercher</translation>
    </message>
    <message>
        <source>Text in any column</source>
        <translation>Texte dans n&apos;importe quelle colonne</translation>
    </message>
    <message numerus="yes">
        <source>%n selected</source>
        <translation>
            <numerusform>%n sélectionné</numerusform>
            <numerusform>%n sélectionnés</numerusform>
        </translation>
    </message>
    <message>
        <source>Clear selection</source>
        <translation>Effacer la sélection</translation>
    </message>
    <message>
        <source>Actions</source>
        <translation>Actions</translation>
    </message>
    <message>
        <source>Actions for #%1</source>
        <translation>Actions pour le n°&#xa0;%1</translation>
    </message>
    <message numerus="yes">
        <source>Pause %n batches: %1</source>
        <translation>
            <numerusform>Suspendre %n lot&#xa0;: %1</numerusform>
            <numerusform>Suspendre %n lots&#xa0;: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Resume %n batches: %1</source>
        <translation>
            <numerusform>Reprendre %n lot&#xa0;: %1</numerusform>
            <numerusform>Reprendre %n lots&#xa0;: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Abort %n batches: %1</source>
        <translation>
            <numerusform>Abandonner %n lot&#xa0;: %1</numerusform>
            <numerusform>Abandonner %n lots&#xa0;: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Pause %n nodes: %1</source>
        <translation>
            <numerusform>Suspendre %n nœud&#xa0;: %1</numerusform>
            <numerusform>Suspendre %n nœuds&#xa0;: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Resume %n nodes: %1</source>
        <translation>
            <numerusform>Reprendre %n nœud&#xa0;: %1</numerusform>
            <numerusform>Reprendre %n nœuds&#xa0;: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Stop %n nodes: %1</source>
        <translation>
            <numerusform>Arrêter %n nœud&#xa0;: %1</numerusform>
            <numerusform>Arrêter %n nœuds&#xa0;: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Priority %1 for %n batches: %2</source>
        <translation>
            <numerusform>Priorité %1 pour %n lot&#xa0;: %2</numerusform>
            <numerusform>Priorité %1 pour %n lots&#xa0;: %2</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Priority %1 for %n nodes: %2</source>
        <translation>
            <numerusform>Priorité %1 pour %n nœud&#xa0;: %2</numerusform>
            <numerusform>Priorité %1 pour %n nœuds&#xa0;: %2</numerusform>
        </translation>
    </message>
    <message>
        <source>Confirm</source>
        <translation>Confirmer</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Fermer</translation>
    </message>
    <message>
        <source>Accepted</source>
        <translation>Accepté</translation>
    </message>
    <message>
        <source>Refused: %1</source>
        <translation>Refusé&#xa0;: %1</translation>
    </message>
    <message>
        <source>No answer in time: %1</source>
        <translation>Pas de réponse à temps&#xa0;: %1</translation>
    </message>
    <message>
        <source>Server unreachable: %1</source>
        <translation>Serveur injoignable&#xa0;: %1</translation>
    </message>
    <message>
        <source>Not allowed: %1</source>
        <translation>Non autorisé&#xa0;: %1</translation>
    </message>
    <message>
        <source>No batches</source>
        <translation>Aucun lot</translation>
    </message>
    <message>
        <source>No nodes</source>
        <translation>Aucun nœud</translation>
    </message>
    <message>
        <source>No batch matches the filter</source>
        <translation>Aucun lot ne correspond au filtre</translation>
    </message>
    <message>
        <source>No node matches the filter</source>
        <translation>Aucun nœud ne correspond au filtre</translation>
    </message>
    <message>
        <source>Batch #%1</source>
        <translation>Lot n°&#xa0;%1</translation>
    </message>
    <message>
        <source>Back to the batch list</source>
        <translation>Retour à la liste des lots</translation>
    </message>
    <message>
        <source>The farm has no batch #%1</source>
        <translation>La ferme n&apos;a pas de lot n°&#xa0;%1</translation>
    </message>
    <message>
        <source>Loading...</source>
        <translation>Chargement...</translation>
    </message>
    <message>
        <source>Shown: %1 of %2</source>
        <translation>Affichés&#xa0;: %1 sur %2</translation>
    </message>
    <message>
        <source>Results</source>
        <translation>Résultats</translation>
    </message>
    <message>
        <source>Sort by %1</source>
        <translation>Trier par %1</translation>
    </message>
    <message>
        <source>Select</source>
        <translation>Sélectionner</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Clair</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Sombre</translation>
    </message>
    <message>
        <source>Theme</source>
        <translation>Thème</translation>
    </message>
    <message>
        <source>Reconnecting...</source>
        <translation>Reconnexion...</translation>
    </message>
</context>
</TS>
